#pragma once

#include <string>

namespace seat {

// The program of a desktop entry's command ("Exec"), without its quotes: a name or a path. Empty when there is none.
std::string programOfCommand(const std::string& command);

// Why the program, a name or a path, cannot be executed: it is not there or may not be, or it is a script whose
// interpreter cannot. Empty when nothing speaks against it.
std::string reasonNotToExecute(const std::string& program);

} // namespace seat
