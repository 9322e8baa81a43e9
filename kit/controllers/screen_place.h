#pragma once

#include "platform/uikit/UIScrollView.h"
#include "platform/uikit/UIViewController.h"

#include <memory>

namespace seat {

// The scroll view that carries the screen, as a table does: its view, or the first one in it. nil for other screens.
std::shared_ptr<UIScrollView> screenCarrier(UIViewController& screen);

// Puts a screen into an area of which a bar covers the top. A screen that scrolls fills the area. Any other is made for
// a phone, whose screens keep their size: it gets a phone's shape in the middle when it is first placed, and keeps it.
// Where the area is lower than that the screen is scrolled, with room beside it for the finger that does it; where it
// has become narrower, the screen is made smaller; larger, never.
void placeScreen(UIViewController& screen, CGSize area, double barHeight);

// What stands in the area for a screen: its view, or the scroll view that it was placed in.
std::shared_ptr<UIView> placedView(UIViewController& screen);

} // namespace seat
