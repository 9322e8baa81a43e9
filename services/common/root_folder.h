#pragma once

#include <string>

namespace services {

// The name under which the page tells the programs that it starts which folder it takes for the phone's file system.
inline constexpr const char* rootVariable = "JOYVANE_ROOT";

// The folder that stands for the phone's file system, as the page finds it: `given` where that is not empty, else what
// the page says, else "joyvane" in the user's data folder. Absolute, without a slash at its end; whether it is there is
// not asked. Empty when the user has no home.
std::string rootFolder(const std::string& given);

} // namespace services
