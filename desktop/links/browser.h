#pragma once

#include <functional>
#include <string>

namespace seat {

// Hands a web address (http or https), or a page on this machine by its real path, to the user's default browser; other
// addresses are not handed on. False, and a logged reason, when there is none. Does not wait: `ended`, if given, hears
// later on the main queue whether the browser could be started. Main thread.
bool openInBrowser(const std::string& address, const std::function<void(bool isStarted)>& ended = {});

} // namespace seat
