#pragma once

// The words of the user's language. A text of ours is written in English where it is used; who shows the page says how
// it reads in another language. Main thread.

#include <initializer_list>
#include <string>
#include <string_view>

namespace seat {

using Translator = std::string (*)(const char* text);
// nullptr: every text stays as it is.
void setTranslator(Translator translator);

// An empty text has no translation.
std::string translated(const char* text);
inline std::string translated(const std::string& text) { return translated(text.c_str()); }

// "%1" becomes the first value, "%2" the second, up to nine: a sentence is translated as a whole.
std::string filled(std::string_view text, std::initializer_list<std::string_view> values);

} // namespace seat
