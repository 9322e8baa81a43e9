#pragma once

#include "services/input_protocol/messages.h"

#include <optional>
#include <string>

namespace jvninput {

// The keymap in a property list, as settings to send: of the preferences file, or of a file that holds the keymap
// alone. Entries that are no key and input are left out; how many is said in `leftOut`. Nothing, and why in
// `complaint`, when the file cannot be read or has no keymap.
std::optional<input::Settings> readKeymapFile(const std::string& path, std::size_t& leftOut, std::string& complaint);

} // namespace jvninput
