#pragma once

#include <string>
#include <string_view>

namespace seat {

// The value of a message's header for text that a user has typed: what is not ASCII goes as encoded words of UTF-8, and
// long values are folded at 76 characters. No line can be smuggled in: line ends become spaces.
std::string headerText(std::string_view text);

// The same for a list of recipients, separated by commas: names are encoded, addresses stay as they are.
std::string headerRecipients(std::string_view recipients);

} // namespace seat
