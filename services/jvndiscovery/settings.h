#pragma once

// The tool's part in the preferences that page, daemon and tool share.

#include "services/bluetooth/Address.h"
#include "services/jvndiscovery/Discovery.h"

#include <optional>
#include <string>

namespace jvndiscovery {

// The type that the page's user has chosen; 0 while nothing is stored. nullopt, logged, when the preferences cannot be
// read. `root` is a real path.
std::optional<int> storedControllerType(const std::string& root);

// Stores the address of the paired controller under the preferences' lock, which it waits for as good as not at all.
// Failed is logged.
Stored storeAddress(const std::string& root, const bluetooth::Address& address);

} // namespace jvndiscovery
