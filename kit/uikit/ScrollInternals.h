#pragma once

#include "kit/uikit/PanReader.h"
#include "kit/uikit/ScrollIndicator.h"
#include "kit/uikit/ScrollMotion.h"
#include "platform/uikit/UIPanGestureRecognizer.h"
#include "platform/uikit/UIScrollView.h"

namespace seat {

// A scroll view's own pan: begins where the finger moves more down or up than across and there is something to scroll.
class ScrollPanReader final : public PanReader {
public:
    void began(UIGestureRecognizer& recognizer, const UITouchList& touches, UIEvent& event) override;
    bool shouldBegin(const UIGestureRecognizer& recognizer) const override;

private:
    bool m_catches = false; // this finger came down on moving content, and holds it
};

} // namespace seat

// What a scroll view keeps.
struct UIScrollView::State {
    CGSize contentSize;
    UIEdgeInsets contentInset;
    std::shared_ptr<UIPanGestureRecognizer> pan;
    seat::ScrollIndicator indicator;
    double grabbedOffset = 0; // where the content would stand without a rubber band when the drag began
    bool dragging = false;
    bool decelerating = false;
    bool movesByItself = false; // an animated change of the offset runs
};

struct UIScrollView::Internals {
    static UIScrollView::State& state(UIScrollView& view) { return *view.m_scroll; }
    static const UIScrollView::State& state(const UIScrollView& view) { return *view.m_scroll; }

    static seat::ScrollRange verticalRange(const UIScrollView& view);
    static bool canScroll(const UIScrollView& view);
    static void handlePan(UIScrollView& view);
    // Ends every movement that runs by itself, where it stands.
    static void stop(UIScrollView& view);
    static void moveTo(UIScrollView& view, CGPoint offset);
    // Back into the range after the content or the view has changed.
    static void settle(UIScrollView& view);
};
using ScrollInternals = UIScrollView::Internals;
