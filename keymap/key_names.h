#pragma once

#include <string>

// The short name of a key, given its HID usage; "(none)" for -1. Letters and the digits 1 to 9 go by the low byte of
// the code alone; the digit 0 has no name of its own.
std::string keyDisplayName(long keyCode);
// The same for the ear: words where the short name is a symbol.
std::string keySpokenName(long keyCode);
