#pragma once

namespace app {

// From now on texts of ours are in the language of the user's environment, as far as there is a catalogue for it beside
// the program, and the page is laid out in its direction. For the start, before anything is shown; costs nothing in
// English.
void speakTheUsersLanguage();

} // namespace app
