#pragma once

#include "services/input_protocol/messages.h"
#include "services/jvnd/Settings.h"

#include <optional>

namespace jvnd {

// What the program that touches devices is to do with keyboards.
input::Settings keyboardMessage(const Settings& settings);

// How it is to light the controller: `picked` in place of the stored colour while there is one.
input::Light lightMessage(const Settings& settings, std::optional<Color> picked);

} // namespace jvnd
