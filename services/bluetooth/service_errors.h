#pragma once

#include "services/bluetooth/Error.h"

#include <string_view>

namespace bluetooth {

// What an error of the Bluetooth service, or of the bus in its place, means to us: `name` is the bus's error name,
// `text` what comes with it, in which the service says why a link could not be made.
Error errorOfService(std::string_view name, std::string_view text);

} // namespace bluetooth
