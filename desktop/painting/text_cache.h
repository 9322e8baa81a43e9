#pragma once

#include "desktop/painting/TextLayout.h"

#include <functional>

namespace seat {

// The layout from memory, or made and remembered. The layouts used longest ago are forgotten. On another thread than
// the main one nothing is remembered: a shaped text belongs to the thread that shaped it.
std::shared_ptr<const TextLayout> cachedTextLayout(std::span<const TextRun> runs, double maxWidth, int lines,
                                                   double scale, const std::function<TextLayout()>& make);

inline constexpr std::size_t mostCachedTextLayouts = 512;
std::size_t cachedTextLayoutCount();
// Of the main thread: they were made with another face.
void forgetTextLayouts();

} // namespace seat
