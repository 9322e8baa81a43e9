#pragma once

#include "desktop/links/desktop_program.h"

#include <functional>
#include <optional>
#include <string>

namespace seat {

// The user's mail program, and the form in which it takes a message.
struct MailProgram {
    DesktopProgram program;
    // Draft: the message as a file, with its links. Address: a "mailto:" address, which has room for plain text; links
    // are written out.
    enum class Takes { Draft, Address } takes = Takes::Draft;
};

// The desktop's default program for messages, else the one for "mailto:" addresses; one that has no
// place for what it would get does not count. Asked afresh each time.
std::optional<MailProgram> mailProgram();

// Has the program begin a message with the HTML body. Does not wait; `ended` hears once, on the main queue, whether the
// program could be started. Main thread.
void handOver(const MailProgram& mail, const std::string& htmlBody, std::function<void(bool isStarted)> ended);

} // namespace seat
