#include "colourpicker/finger.h"

namespace {

std::optional<CGPoint> firstTouch(const UIGestureRecognizer& recognizer, const UIView* view) {
    if (recognizer.numberOfTouches() == 0) return {};
    return recognizer.locationOfTouch_inView(0, view);
}

} // namespace

std::optional<CGPoint> tappedPoint(const std::shared_ptr<UITapGestureRecognizer>& recognizer, const UIView* view) {
    if (!recognizer || recognizer->state() != UIGestureRecognizerStateEnded) return {};
    return firstTouch(*recognizer, view);
}

std::optional<PanStep> panStep(const std::shared_ptr<UIPanGestureRecognizer>& recognizer, const UIView* view) {
    if (!recognizer) return {};
    const bool ended = recognizer->state() == UIGestureRecognizerStateEnded;
    if (!ended && recognizer->state() != UIGestureRecognizerStateChanged) return {};
    return PanStep{firstTouch(*recognizer, view), ended};
}
