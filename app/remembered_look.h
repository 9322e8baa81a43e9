#pragma once

#include "desktop/appearance/DesktopLook.h"

#include <optional>

namespace app {

// What the desktop's settings said when the program ran last with this root, so that the first frame has it already.
// Nothing when nobody has said anything, or the file is not ours.
std::optional<seat::DesktopLook> rememberedLook();
// Written only when it is another one than was remembered; nothing forgets it. A failure is logged.
void rememberLook(const std::optional<seat::DesktopLook>& look);

} // namespace app
