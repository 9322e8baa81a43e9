#pragma once

#include "kit/controllers/UINavigationBar.h"

#include <memory>
#include <optional>
#include <string>

class UINavigationController;

struct UINavigationBar::Internals {
    struct Item {
        std::string title;
        std::optional<std::string> backTitle; // nothing: no back button
        std::weak_ptr<UINavigationController> controller;
        std::shared_ptr<UIView> button; // at the right end; nil: none
    };
    enum class Direction { Forward, Back };
    static void show(UINavigationBar& bar, const Item& item, Direction direction, bool animated);
};
using NavigationBarInternals = UINavigationBar::Internals;
