#pragma once

#include "platform/uikit/UIScrollView.h"
#include "platform/uikit/UIViewController.h"

#include <memory>

namespace seat {

// The scroll view that carries the screen, as a table does: its view, or the first one in it. nil for other screens.
std::shared_ptr<UIScrollView> screenCarrier(UIViewController& screen);

// Puts a screen's view in its place in an area of which a bar covers the top. A screen that scrolls fills the area.
// Any other is made for a phone, whose screens keep their size: it gets a phone's shape in the middle when it is first
// placed, and from then on it is zoomed with the area.
void placeScreen(UIViewController& screen, CGSize area, double barHeight);

} // namespace seat
