#pragma once

#include "platform/quartz/CGGeometry.h"

#include <optional>
#include <string>

namespace app {

// The size in points that the user gave the window on a screen, kept in the root for the last few screens. Nothing when
// there is none, or none that a window can have.
std::optional<CGSize> rememberedWindowSize(const std::string& screen);
// What cannot be kept is logged.
void rememberWindowSize(const std::string& screen, CGSize size);

} // namespace app
