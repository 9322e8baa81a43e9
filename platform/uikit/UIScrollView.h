#pragma once

#include "platform/uikit/UIView.h"

// Shows a part of a larger content; drag (with momentum and a soft end), wheel and keyboard move it vertically.
//
// The offset is the bounds' origin. It is kept between -inset.top and content height + inset.bottom - height (never
// below the first): pulled beyond, the content follows the finger ever less and springs back when it is let go; a
// content that fits does not move at all. A drag begins where a finger moves more down or up than across; it takes the
// finger from whatever was hit. A finger on moving content holds it, and is no tap. Each step, by finger, momentum,
// wheel or animation, sets the bounds and calls contentOffsetChanged() once, with the new offset in place; nothing else
// is reported, and setting the offset that is there reports nothing. Main thread only.
class UIScrollView : public UIView {
    NS_CLASS(UIScrollView)
public:
    struct Internals; // the seat's way in, opaque to everybody else
    ~UIScrollView() override;

    std::shared_ptr<UIScrollView> initWithFrame(CGRect frame);

    // Points. Setting the offset ends whatever moves by itself, and is not cut to the range.
    CGPoint contentOffset() const;
    void setContentOffset(CGPoint offset);
    // 0.3 s, ease in and out, and only while the view is in a window; without that, and not animated, at once.
    void setContentOffset_animated(CGPoint offset, bool animated);
    // Of all there is to show. Smaller than before it may bring the offset back into the range, at once.
    CGSize contentSize() const;
    void setContentSize(CGSize size);
    // Room beside the content that may be scrolled into, such as what a bar covers. A view that shows its very top
    // keeps showing it under another inset.
    UIEdgeInsets contentInset() const;
    void setContentInset(UIEdgeInsets inset);
    // A finger moves it; momentum or the soft end moves it.
    bool isDragging() const;
    bool isDecelerating() const;
    // As little as needed to show the rectangle, in the content's coordinates; nothing when it is shown.
    void scrollRectToVisible_animated(CGRect rect, bool animated);
    // The wheel; false when there is nothing to scroll in that direction.
    bool scrollBy(CGPoint delta);

    // The offset has changed; called for every step.
    virtual void contentOffsetChanged();

    void setFrame(CGRect frame) override;

protected:
    UIScrollView();
    void setBounds(CGRect bounds) override;
    void didMoveToWindow() override;

private:
    void handleScrollPan(const std::shared_ptr<NSObject>& recognizer);

    struct State;
    std::unique_ptr<State> m_scroll;
};
