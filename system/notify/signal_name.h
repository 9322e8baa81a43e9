#pragma once

#include "system/bus/SessionBus.h"

#include <optional>
#include <string>

namespace seat {

// A notification's name as a signal of the session bus: "com.quorrel.jvnprefs.changed" is "changed" of interface
// "com.quorrel.jvnprefs" at the path "/com/quorrel/jvnprefs". nullopt when the name does not allow it: it needs three
// parts or more of letters, digits and underscores, none beginning with a digit.
std::optional<BusSignal> signalForNotification(const std::string& name);

} // namespace seat
