#pragma once

#include <string>

namespace app {

// A program of Joyvane's own: beside this one, else in ../lib/joyvane of its folder. Empty when there is none.
std::string ownProgram(const std::string& name);

} // namespace app
