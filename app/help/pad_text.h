#pragma once

#include "services/input_protocol/messages.h"

#include <string>

namespace app {

// What is said below the picture of the gamepad.
struct PadText {
    std::string headline;
    std::string advice;
};

PadText textOf(const input::State& state);
// `problem` empty: the connection has only just been made.
PadText problemText(const std::string& problem);
PadText simulatedText();

} // namespace app
