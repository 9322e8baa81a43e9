#include "kit/uikit/front_controller.h"

#include "kit/uikit/UIWindow.h"

std::shared_ptr<UIViewController> seat::frontController(const UIWindow& window) {
    auto front = window.rootViewController();
    while (auto child = front ? front->childInFront() : nullptr) front = std::move(child);
    return front;
}
