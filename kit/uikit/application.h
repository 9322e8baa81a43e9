#pragma once

// What the process that shows the interface tells the application object.

#include "platform/uikit/UIKeyEvent.h"

#include <memory>

namespace seat {

// Every key event of the process enters here, on the main thread: the message "handleKeyUIEvent:" to the application
// object, found by the runtime. A key without a place
// goes to the application's own handling alone.
void sendKeyEvent(const std::shared_ptr<UIKeyEvent>& event);

// The window was minimised, hidden or closed: posts UIApplicationDidEnterBackgroundNotification. Main thread.
void applicationDidEnterBackground();

} // namespace seat
