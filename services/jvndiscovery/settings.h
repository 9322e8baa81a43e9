#pragma once

// The tool's part in the preferences that page, daemon and tool share.

#include "services/bluetooth/Address.h"

#include <optional>
#include <string>

namespace jvndiscovery {

// The type that the page's user has chosen; 0 while nothing is stored. nullopt, logged, when the preferences cannot be
// read. `root` is a real path.
std::optional<int> storedControllerType(const std::string& root);

// Stores the address of the paired controller under the preferences' lock. False, logged, when it is not in the file.
bool storeAddress(const std::string& root, const bluetooth::Address& address);

} // namespace jvndiscovery
