#pragma once

#include <string_view>

namespace app {

// The usage (Keyboard/Keypad page) of a key by the name that a tour calls it; 0 for a name that is none.
long keyNamed(std::string_view name);

} // namespace app
