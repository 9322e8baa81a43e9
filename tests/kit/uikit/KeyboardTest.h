#pragma once

#include "kit/uikit/application.h"
#include "kit/uikit/hid_keys.h"
#include "tests/kit/uikit/SceneTest.h"

namespace hid = seat::hid;

// A view that can be focused, and writes down what keys do to it.
class KeyView : public UIView {
    NS_CLASS(KeyView)
public:
    std::shared_ptr<KeyView> initWithFrame(CGRect frame) { return UIView::initWithFrame(frame) ? self(this) : nullptr; }
    bool canBecomeFocused() const override { return focusable; }
    UIAccessibilityRole accessibilityRole() const override { return role; }
    bool accessibilityActivate() override {
        log += "activated ";
        return true;
    }
    bool accessibilityStep(UIAccessibilityDirection direction, UIAccessibilityStep step) override {
        const char* const names[] = {"left", "right", "up", "down"};
        log += std::string(names[static_cast<int>(direction)]) + (step == UIAccessibilityStep::Large ? ":large " : " ");
        return true;
    }
    bool accessibilityPerformEscape() override {
        if (!takesEscape) return UIView::accessibilityPerformEscape();
        log += "escaped ";
        return true;
    }
    std::shared_ptr<UIView> focusNeighbour(const UIView&, bool forward) override {
        return forward ? neighbour.lock() : nullptr;
    }

    bool focusable = true;
    bool takesEscape = false;
    UIAccessibilityRole role = UIAccessibilityRole::Button;
    std::weak_ptr<UIView> neighbour;
    std::string log;
};

class Keyboard : public SceneTest {
protected:
    std::shared_ptr<UIView> focused() const { return scene.window()->focusedView(); }
};
