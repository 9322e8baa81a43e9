#pragma once

#include "platform/foundation/NSDictionary.h"

#include <string>
#include <vector>

namespace app {

// A value in a few words. Bytes are counted, not shown: they may be somebody's address.
std::string describe(const id& value);

// One line for each key that was added, changed or removed, also in dictionaries inside; nil is an empty dictionary.
std::vector<std::string> describeChanges(const NSDictionary* before, const NSDictionary* after);

} // namespace app
