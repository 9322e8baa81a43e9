#pragma once

// Words in the user's language, for texts that are not the page's own literal ones: what assistive technology says.
// Written in English where they are used; one without a translation stays as it is. Main thread.

#include <initializer_list>
#include <string>
#include <string_view>

std::string NSLocalizedString(const char* text);
// "%1" becomes the first value, "%2" the second, up to nine.
std::string NSLocalizedStringWithValues(const char* text, std::initializer_list<std::string_view> values);

// Marks a text of a table for the catalogues.
constexpr const char* NSLocalizable(const char* text) { return text; }
