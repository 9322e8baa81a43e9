#pragma once

#include <string>

namespace seat {

// Hands the address to the user's default browser; false, and a logged reason, when there is none or it cannot be
// started. Only http and https addresses are handed on. Does not wait. Main thread.
bool openInBrowser(const std::string& url);

// From now on UIApplication::openURL opens the browser.
void installBrowser();

} // namespace seat
