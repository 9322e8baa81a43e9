#include "platform/uikit/UIApplication.h"

#include "kit/uikit/UIWindow.h"
#include "kit/uikit/application.h"
#include "kit/uikit/keyboard.h"
#include "kit/uikit/url_opener.h"
#include "platform/foundation/NSNotificationCenter.h"
#include "platform/log.h"
#include "platform/runtime/method.h"

NS_CLASS_IMPLEMENTATION(UIApplication, UIResponder, method<&UIApplication::handleKeyUIEvent>("handleKeyUIEvent:"))

namespace {

std::function<bool(const std::string&)>& urlOpener() {
    static auto* const opener = new std::function<bool(const std::string&)>; // outlives every static
    return *opener;
}

} // namespace

std::shared_ptr<UIApplication> UIApplication::sharedApplication() {
    // Never destroyed: a hooked key handler may ask for it up to the end.
    static const auto* const application = new std::shared_ptr<UIApplication>(alloc());
    return *application;
}

std::shared_ptr<UIWindow> UIApplication::keyWindow() const { return m_keyWindow.lock(); }
void UIApplication::setKeyWindow(const std::shared_ptr<UIWindow>& window) { m_keyWindow = window; }

void UIApplication::handleKeyUIEvent(const std::shared_ptr<UIKeyEvent>& event) {
    const auto window = keyWindow();
    if (window && event) seat::handleKey(*window, *event);
}

bool UIApplication::openURL(const std::string& url) {
    const auto opener = urlOpener();
    if (opener) return opener(url);
    NSLog("open URL: %s: nobody opens addresses", url.c_str());
    return false;
}

namespace seat {

void sendKeyEvent(const std::shared_ptr<UIKeyEvent>& event) {
    const auto application = UIApplication::sharedApplication();
    // Who hooks the handler learns which keys there are by their places.
    if (event && event->_keyCode() == 0) return application->handleKeyUIEvent(event);
    objc_msgSend(*application, "handleKeyUIEvent:", {id(event)});
}

void applicationDidEnterBackground() {
    NSNotificationCenter::defaultCenter()->postNotificationName_object(UIApplicationDidEnterBackgroundNotification,
                                                                       UIApplication::sharedApplication());
}

void setURLOpener(std::function<bool(const std::string&)> opener) { urlOpener() = std::move(opener); }

} // namespace seat
