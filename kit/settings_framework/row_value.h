#pragma once

// What a settings row has to do with values: asking its target for one, handing it one, putting it into words.

#include "platform/settings_framework/PSSpecifier.h"

#include <optional>
#include <string>

namespace seat {

// From the row's getter, else the row's "default"; nil when there is neither.
id shownValue(const std::shared_ptr<PSSpecifier>& row);

// To the row's setter; nothing when there is no setter or nobody to tell.
void storeValue(const std::shared_ptr<PSSpecifier>& row, const id& value);

// A string as it is, numbers in plain decimal, booleans as "On" and "Off"; empty for anything else.
std::string textOf(const id& value);

// The choices of a link list: its "validValues" and "validTitles", pair by pair.
struct Choice {
    id value;
    std::string title;
};
std::vector<Choice> choicesOf(const PSSpecifier& row);
// Which choice the value is: an equal one, else the one of the same number, as a program that asks for the integer
// value would see it.
std::optional<std::size_t> choiceOf(const std::vector<Choice>& choices, const id& value);

} // namespace seat
