#pragma once

#include "platform/uikit/UIKeyEvent.h"
#include "platform/uikit/UIResponder.h"

#include <string>

class UIWindow;

// The one application object. Every key event of the process reaches it as the message "handleKeyUIEvent:", found by
// the runtime, so that the method can be replaced. Main thread only.
class UIApplication final : public UIResponder {
    NS_CLASS(UIApplication)
public:
    // Never nil.
    static std::shared_ptr<UIApplication> sharedApplication();

    // The application's own keyboard handling: moves the focus, activates what has it, goes back, scrolls. While a row
    // of the front table stays selected it does nothing: that row is waiting for the key.
    void handleKeyUIEvent(const std::shared_ptr<UIKeyEvent>& event);

    // Hands the address to the desktop's browser without waiting; false when that cannot be started.
    bool openURL(const std::string& url);

    // Weak: nil when there is none, or it has gone.
    std::shared_ptr<UIWindow> keyWindow() const;
    // Set by whoever shows a window.
    void setKeyWindow(const std::shared_ptr<UIWindow>& window);

private:
    std::weak_ptr<UIWindow> m_keyWindow;
};
