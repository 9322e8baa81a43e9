#pragma once

#include <string>

namespace seat {

// An unsent message in the form that mail programs open for writing: no sender, recipient or subject, its body HTML.
// Whatever bytes the body holds, it travels as base64.
std::string mailDraft(const std::string& htmlBody);

// The body for a reader of plain text: a line each heading, paragraph and item, and each link's address behind it.
std::string plainMessage(const std::string& htmlBody);

// A plain body as an HTML one.
std::string htmlOfText(const std::string& text);

// An address that asks for a new message with the text as its body, without recipient or subject.
std::string mailAddressWithBody(const std::string& text);

} // namespace seat
