#pragma once

#include "platform/uikit/UIViewController.h"

#include <memory>

class UIWindow;

namespace seat {

// The screen that the user looks at: the one presented last, else the top of the navigation stack. nil when the window
// has none. Where no view has the focus, an escape begins here.
std::shared_ptr<UIViewController> frontController(const UIWindow& window);

} // namespace seat
