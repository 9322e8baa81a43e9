#pragma once

#include "tests/kit/uikit/SceneTest.h"

// Writes down which button an alert was dismissed with.
class AlertListener : public NSObject, public UIAlertViewDelegate {
    NS_CLASS(AlertListener)
public:
    std::shared_ptr<AlertListener> init() { return NSObject::init() ? self(this) : nullptr; }

    void alertView_didDismissWithButtonIndex(UIAlertView& alert, long buttonIndex) override {
        log += alert.title() + ":" + std::to_string(buttonIndex) + (alert.superview() ? "(still there) " : " ");
        if (const auto once = std::exchange(then, nullptr)) once();
    }

    std::string log;
    std::function<void()> then;
};

// A key window, in which alerts appear.
class AlertTest : public SceneTest {
protected:
    AlertTest() { UIApplication::sharedApplication()->setKeyWindow(scene.window()); }
    // No alert outlives its test.
    ~AlertTest() override {
        while (const auto alert = shown()) alert->dismissWithClickedButtonIndex_animated(0, /*animated=*/false);
        UIApplication::sharedApplication()->setKeyWindow(nullptr);
    }

    std::shared_ptr<UIAlertView> make(const std::string& title, std::vector<std::string> others = {},
                                      const std::string& message = "Message") const {
        return UIAlertView::alloc()->initWithTitle_message_delegate_cancelButtonTitle_otherButtonTitles(
            title, message, listener, "Dismiss", std::move(others));
    }
    std::shared_ptr<UIAlertView> show(const std::string& title, std::vector<std::string> others = {},
                                      const std::string& message = "Message") {
        const auto alert = make(title, std::move(others), message);
        alert->show();
        touches.settle();
        return alert;
    }
    // nil when none is.
    std::shared_ptr<UIAlertView> shown() const {
        for (const auto& view : scene.window()->subviews())
            if (auto alert = std::dynamic_pointer_cast<UIAlertView>(view)) return alert;
        return nullptr;
    }
    std::string shownTitle() const { return shown() ? shown()->title() : "none"; }
    static std::shared_ptr<UIView> button(const UIView& view, const std::string& title) {
        for (const auto& subview : view.subviews()) {
            if (subview->accessibilityRole() == UIAccessibilityRole::Button && subview->accessibilityLabel() == title)
                return subview;
            if (auto found = button(*subview, title)) return found;
        }
        return nullptr;
    }
    void tapButton(const std::string& title) {
        const auto found = button(*scene.window(), title);
        ASSERT_TRUE(found) << title;
        touches.tap(*found);
        touches.settle();
    }

    std::shared_ptr<AlertListener> listener = AlertListener::alloc()->init();
};
