#include "desktop/links/browser.h"

#include "desktop/links/desktop_program.h"
#include "platform/log.h"

namespace seat {

bool openInBrowser(const std::string& address, const std::function<void(bool isStarted)>& ended) {
    const bool isSecure = address.starts_with("https://");
    const bool isFile = address.starts_with("/");
    if (!isSecure && !isFile && !address.starts_with("http://")) {
        NSLog("%s is not opened: no web address", address.c_str());
        return false;
    }
    auto browser =
        isFile ? std::nullopt : defaultProgram(isSecure ? "x-scheme-handler/https" : "x-scheme-handler/http");
    if (!browser) browser = defaultProgram("text/html");
    // A desktop may know its browser by what it does with addresses alone.
    if (!browser && isFile) browser = defaultProgram("x-scheme-handler/http");
    if (!browser) {
        NSLog("%s is not opened: the desktop names no browser", address.c_str());
        return false;
    }
    startProgram(
        *browser, address, ended ? ended : [](bool) {});
    return true;
}

} // namespace seat
