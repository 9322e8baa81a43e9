#pragma once

#include <functional>
#include <optional>
#include <string>

namespace seat {

// A program as the desktop knows it.
struct DesktopProgram {
    std::string entry; // its desktop entry's real path
};

// The user's default program for a media type ("message/rfc822", "x-scheme-handler/mailto"), as the desktop's own
// library has it now: its tool is asked, and waited for a second at most. Nothing when there is none, or no answer.
std::optional<DesktopProgram> defaultProgram(const std::string& mediaType);

// Whether the program's command has a place for a file, or for an address; without one it would be started with
// nothing.
bool takesFiles(const DesktopProgram& program);
bool takesAddresses(const DesktopProgram& program);

// Has the desktop's library start the program with a file (its real path) or an address. Does not wait. `ended` hears
// on the main queue, once, whether the program could be started; the reason has been logged. Main thread.
void startProgram(const DesktopProgram& program, const std::string& fileOrAddress,
                  std::function<void(bool isStarted)> ended);

} // namespace seat
