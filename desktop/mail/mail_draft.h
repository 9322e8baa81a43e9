#pragma once

#include <string>

namespace seat {

struct MailMessage {
    std::string recipients; // as typed: addresses, with names or without, separated by commas
    std::string subject;
    std::string htmlBody;
};

// An unsent message as a file that mail programs open for writing: without sender, its body HTML. Whatever bytes the
// body holds, it travels as base64.
std::string mailDraft(const MailMessage& message);

// Writes the draft into the user's data folder and gives its real path; empty, and a logged reason, when it cannot be
// written. A later draft replaces an earlier one.
std::string saveMailDraft(const MailMessage& message);

} // namespace seat
