#pragma once

#include "platform/quartz/CALayer.h"

#include <functional>
#include <memory>

class UIView;

// What both cursors look like: a translucent white disc with a hairline rim, and a smaller disc of the colour in it.

inline constexpr CGSize cursorLookSize{28, 28};

// The whole cursor, at the back.
std::shared_ptr<CALayer> makeCursorBackLayer();
// The disc of the colour, on top of the other; without a colour yet.
std::shared_ptr<CALayer> makeCursorColorLayer(const CALayer& backLayer);

enum class CursorStep { Normal, Enlarged };
void setCursorStep(CALayer& backLayer, CALayer& colorLayer, CursorStep step);

// Grows (or shrinks) a cursor: shows the step that it comes from at once, then animates to the other. `show` gives the
// cursor the look of a step.
void animateCursorEditing(bool editing, const std::function<void(CursorStep)>& show);
