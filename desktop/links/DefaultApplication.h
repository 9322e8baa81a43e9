#pragma once

#include <optional>
#include <string>
#include <vector>

namespace seat {

// The user's default program for a media type ("message/rfc822", "x-scheme-handler/https"), as desktops keep it: the
// lists "mimeapps.list" and "mimeinfo.cache" in the XDG folders, and the program's desktop file. Reads files only.
struct DefaultApplication {
    std::string name;                 // as the desktop file gives it
    std::vector<std::string> command; // the program, by its real path, and its arguments; %u, %U, %f, %F still in them
};
std::optional<DefaultApplication> defaultApplication(const std::string& mediaType);

// What the program is started with: the codes in its command replaced, also inside an argument; without a code for it
// the file or address comes last.
std::vector<std::string> argumentsFor(const DefaultApplication& application, const std::string& fileOrAddress);

// Starts the program with the file or address in the place that its command gives it. Does not wait; false, and a
// logged reason, when it could not be started. Main thread.
bool openWithApplication(const DefaultApplication& application, const std::string& fileOrAddress);

// The arguments of an "Exec=" line, quotes and escapes taken away. Empty when it is malformed.
std::vector<std::string> splitExecLine(const std::string& line);

} // namespace seat
