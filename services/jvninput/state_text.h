#pragma once

#include "services/input_protocol/messages.h"

#include <string>

namespace jvninput {

// What people are told. No text ends with a new line.
std::string readinessText(const input::State& state);
std::string profileText(input::Profile profile);
std::string refusalText(input::RefusalReason reason);
// The inputs that are down, as in "up, A, L1"; empty when there are none.
std::string inputsText(std::uint32_t inputs);
// All of it, in lines.
std::string summary(const input::State& state, const input::Keyboards& keyboards);

} // namespace jvninput
