#pragma once

// How a layer property gets a new value: at once, or at once with what is drawn following.

#include "kit/quartz/LayerValues.h"
#include "kit/quartz/repaint.h"

class CALayer;

namespace seat {

// T is a property type of LayerValues; `reach` says what of the layer looks different afterwards.
template <class T> void change(CALayer& layer, T LayerValues::*field, T value, Reach reach);

// Both in one go, with one repaint of where the layer was and one of where it is.
void changeGeometry(CALayer& layer, const CGRect& bounds, CGPoint position);

} // namespace seat
