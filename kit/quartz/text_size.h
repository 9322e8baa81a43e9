#pragma once

// How large the user wants text to be, in the one place where fonts follow it. Any thread reads, the main thread sets.

#include "platform/uikit/UIFont.h"

#include <memory>

namespace seat {

inline constexpr double leastTextScale = 0.8;
inline constexpr double mostTextScale = 2;

// 1 is the size that text has by itself. A value beyond the bounds is cut to them; one that is no number is 1.
void setTextScale(double scale);
double textScale();
// Of bars and buttons, which have one line and share it: half as much beyond 1.
double controlTextScale();

// Text has another face now, of other widths.
void noteTextChange();
// Another number after each change: what was measured or laid out before is out of date.
unsigned textGeneration();

} // namespace seat

// Fonts that follow the text's size, those that are held too.
struct UIFont::Internals {
    static std::shared_ptr<UIFont> textFont(double pointSize, bool bold);
    static std::shared_ptr<UIFont> controlFont(double pointSize, bool bold);
};
using FontInternals = UIFont::Internals;
