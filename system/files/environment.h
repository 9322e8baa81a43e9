#pragma once

#include <cstdlib>
#include <string>

namespace seat {

// A variable of the process's environment; empty when it is not set. Not while another thread changes the environment.
inline std::string environment(const char* name) {
    const char* const value = std::getenv(name);
    return value ? value : "";
}

} // namespace seat
