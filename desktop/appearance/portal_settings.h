#pragma once

#include "desktop/appearance/DesktopLook.h"
#include "platform/foundation/NSDictionary.h"

namespace seat {

// What is asked of the desktop's settings portal.
inline constexpr const char* portalSettingsSpaces[] = {"org.freedesktop.appearance", "org.gnome.desktop.a11y.interface",
                                                       "org.gnome.desktop.interface"};

// Brings the look in line with what the portal says: a dictionary of its spaces, each one of names and values. What is
// not said, or of another kind than agreed, leaves the look as it is.
void applyPortalSettings(const NSDictionary& spaces, DesktopLook& look);

} // namespace seat
