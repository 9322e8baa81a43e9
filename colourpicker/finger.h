#pragma once

// What the two gestures of the map and the slider say of their first finger.

#include "platform/uikit/UIPanGestureRecognizer.h"
#include "platform/uikit/UITapGestureRecognizer.h"

#include <memory>
#include <optional>

// Where a tap that has ended took place, in the view's coordinates.
std::optional<CGPoint> tappedPoint(const std::shared_ptr<UITapGestureRecognizer>& recognizer, const UIView* view);

struct PanStep {
    std::optional<CGPoint> point; // none once the finger has gone, the usual case at the end
    bool ended = false;
};

// Nothing for a pan that has only begun, or was cancelled.
std::optional<PanStep> panStep(const std::shared_ptr<UIPanGestureRecognizer>& recognizer, const UIView* view);
