#pragma once

#include "platform/foundation/NSDictionary.h"

#include <functional>
#include <memory>
#include <string>

namespace seat {

// The object path of every messaging center.
inline constexpr const char* messagingCenterPath = "/";

// Sends a message to the messaging center of that name, in whatever process of this user it runs. Does not wait; in the
// order of the calls. A nil dictionary sends none. `delivered`, when given, hears once whether the center took it;
// without it nothing is asked back. Main thread.
void sendMessage(const std::string& center, const std::string& message, const std::shared_ptr<NSDictionary>& dictionary,
                 std::function<void(bool)> delivered = nullptr);

} // namespace seat
