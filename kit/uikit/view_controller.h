#pragma once

// The tie between a view and the screen whose view it is. The view holds it weakly; the screen is then the view's next
// responder and hears `viewDidLayoutSubviews` after each of the view's layouts.

#include "platform/uikit/UIViewController.h"

#include <memory>

namespace seat {

// nil unties.
void setViewController(UIView& view, const std::shared_ptr<UIViewController>& controller);
// nil for a view that is no screen's.
std::shared_ptr<UIViewController> viewController(const UIView& view);

} // namespace seat
