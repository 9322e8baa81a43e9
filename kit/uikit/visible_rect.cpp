#include "kit/uikit/visible_rect.h"

#include "kit/quartz/geometry.h"
#include "kit/uikit/ViewInternals.h"

namespace seat {

CGRect alignmentBounds(const UIView& view) {
    const CGRect aligned = view.alignmentRectForFrame(view.bounds());
    return aligned.size.width > 0 && aligned.size.height > 0 ? aligned : view.bounds();
}

CGRect visibleRectInWindow(const UIView& view) {
    CGRect rect = view.bounds();
    const UIView* at = &view;
    while (true) {
        if (!ViewInternals::isVisible(*at)) return CGRectZero;
        const UIView* const above = ViewInternals::state(*at).superview;
        if (!above) break;
        rect = at->convertRect_toView(rect, above);
        if (above->clipsToBounds() || !ViewInternals::state(*above).superview)
            rect = CGRectIntersection(rect, above->bounds());
        if (CGRectIsEmpty(rect)) return CGRectZero;
        at = above;
    }
    return rect;
}

} // namespace seat
