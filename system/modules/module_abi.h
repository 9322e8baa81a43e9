#pragma once

#include <cstdint>
#include <optional>

namespace seat {

// What module_note.cpp has put into a module: a word made of the declarations that it was compiled with. Read from the
// file alone, which is not trusted to be well-formed; nullopt when it says none, and is no module of ours. The file's
// header must have been looked at. Does not move the file's position.
std::optional<std::uint32_t> moduleABI(int file);

} // namespace seat
