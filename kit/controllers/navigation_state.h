#pragma once

#include "kit/controllers/ControllerInternals.h"
#include "kit/controllers/UINavigationBar.h"
#include "platform/uikit/UINavigationController.h"

// What a navigation controller keeps. The stack changes at once; what is shown is then brought in line with it.
struct UINavigationController::State {
    explicit State(UINavigationController& owner) : controller(owner) {}

    // Moves from what is shown to the top of the stack, again and again should a screen push or pop meanwhile.
    void settle(bool animated);
    void showBar(bool isForward, bool animated);
    void layOut();
    bool contains(const UIViewController* screen) const;

    UINavigationController& controller;
    std::vector<std::shared_ptr<UIViewController>> stack;
    std::shared_ptr<UIViewController> shown; // may have left the stack already
    std::shared_ptr<UINavigationBar> bar;
    std::shared_ptr<UIView> area; // in which the screens' views stand, below the bar in depth
    std::shared_ptr<ScreenTransition> transition;
    bool isSettling = false;
    bool isAnimated = false; // the last wish

private:
    void move();
    void prepare(UIViewController& screen) const;
};

struct UINavigationController::Internals {
    static void barChanged(UINavigationController& controller);
};
using NavigationInternals = UINavigationController::Internals;
