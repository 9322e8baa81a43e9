#pragma once

#include <string>

namespace host {

// An unsent message as a file that mail programs open for writing: without sender, recipient and subject, its body
// HTML. Whatever bytes the body holds, it travels as base64.
std::string mailDraft(const std::string& htmlBody);

// Writes the draft into the user's data folder and gives its real path; empty, and a logged reason, when it cannot be
// written. A later draft replaces an earlier one.
std::string saveMailDraft(const std::string& htmlBody);

} // namespace host
