#pragma once

// The measures and colours that tables, bars and alerts share. Points.

#include "platform/uikit/UIColor.h"

#include <memory>

namespace seat::appearance {

inline constexpr double rowHeight = 44;
inline constexpr double barHeight = 44;
inline constexpr double sideMargin = 16;     // from the window's edge to a card, from a card's edge to its text
inline constexpr double readableWidth = 600; // rows grow no wider
inline constexpr double cardCornerRadius = 10;
inline constexpr double labelGap = 8; // between a title and what stands beside it

const std::shared_ptr<UIColor>& pageColor();    // behind grouped rows
const std::shared_ptr<UIColor>& cardColor();    // rows, alerts
const std::shared_ptr<UIColor>& pressedColor(); // a row under the finger, or selected
const std::shared_ptr<UIColor>& separatorColor();
const std::shared_ptr<UIColor>& textColor();
// Readable on the page and on a card (contrast of 4.5 or more on both).
const std::shared_ptr<UIColor>& secondaryTextColor();
const std::shared_ptr<UIColor>& markColor(); // chevrons: no text, so paler
const std::shared_ptr<UIColor>& tintColor(); // what can be tapped
const std::shared_ptr<UIColor>& barColor();

// The thinnest line that is exactly as thick as a pixel, and the nearest place where it is crisp.
double hairline();
double roundToPixel(double points);

} // namespace seat::appearance
