#pragma once

#include "kit/controllers/ControllerInternals.h"

#include <memory>
#include <string>

// What a screen keeps.
struct UIViewController::State {
    enum class Appearance { Disappeared, Appearing, Appeared, Disappearing };

    std::shared_ptr<UIView> view; // nil until it is asked for
    bool isLoading = false;
    ScreenPlace place;
    std::string title;
    std::shared_ptr<UIView> barButton; // nil: none
    Appearance appearance = Appearance::Disappeared;
    bool isAnimated = false; // the appearance call that is under way
    std::weak_ptr<UIViewController> parent;
    std::shared_ptr<UIViewController> presented;
    std::weak_ptr<UIViewController> presenting;
    std::shared_ptr<ScreenTransition> presentation; // the coming or going of `presented`
};
