#include "desktop/links/browser.h"

#include "desktop/links/DefaultApplication.h"
#include "kit/uikit/url_opener.h"
#include "platform/log.h"

namespace seat {

bool openInBrowser(const std::string& url) {
    const bool secure = url.starts_with("https://");
    if (!secure && !url.starts_with("http://")) {
        NSLog("%s is not opened: no web address", url.c_str());
        return false;
    }
    auto browser = defaultApplication(secure ? "x-scheme-handler/https" : "x-scheme-handler/http");
    if (!browser) browser = defaultApplication("text/html");
    if (!browser) {
        NSLog("%s is not opened: the desktop names no browser", url.c_str());
        return false;
    }
    return openWithApplication(*browser, url);
}

void installBrowser() { setURLOpener(openInBrowser); }

} // namespace seat
