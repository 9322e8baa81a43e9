#pragma once

#include <string>
#include <vector>

namespace seat {

// The name under which a child finds the folder that stands for the phone's file system.
inline constexpr const char* rootVariable = "JOYVANE_ROOT";

// Sets a variable of this process's environment that children do not get: they get what was there before. Main thread,
// before there are others.
void setVariableForUsAlone(const std::string& name, const std::string& value);

// "NAME=value" for each variable that a child gets: this process's environment, with JOYVANE_ROOT set to the root
// (absent without one) and DBUS_SESSION_BUS_ADDRESS to the session's bus.
std::vector<std::string> childEnvironment();

// What a tool of the add-on's own gets, and nothing else of this process's environment: who the user is, the language,
// the user's folders, the buses, the root, and JOYVANE_SIMULATE.
std::vector<std::string> toolEnvironment();

} // namespace seat
