#pragma once

#include "platform/uikit/UIView.h"

// Shows a part of a larger content; drag (with momentum and a soft end), wheel and keyboard move it vertically.
class UIScrollView : public UIView {
    NS_CLASS(UIScrollView)
public:
    ~UIScrollView() override;

    std::shared_ptr<UIScrollView> initWithFrame(CGRect frame);

    CGPoint contentOffset() const;
    void setContentOffset(CGPoint offset);
    void setContentOffset_animated(CGPoint offset, bool animated);
    CGSize contentSize() const;
    void setContentSize(CGSize size);
    UIEdgeInsets contentInset() const;
    void setContentInset(UIEdgeInsets inset);
    bool isDragging() const;
    bool isDecelerating() const;
    // As little as needed.
    void scrollRectToVisible_animated(CGRect rect, bool animated);
    // The wheel; false when there is nothing to scroll in that direction.
    bool scrollBy(CGPoint delta);

    // The offset has changed; called for every step.
    virtual void contentOffsetChanged();

    void setFrame(CGRect frame) override;
    void setBounds(CGRect bounds) override;
    void didMoveToWindow() override;

protected:
    UIScrollView();

private:
    void handleScrollPan(const std::shared_ptr<NSObject>& recognizer);

    friend struct ScrollInternals; // kit/uikit/ScrollInternals.h
    struct State;
    std::unique_ptr<State> m_scroll;
};
