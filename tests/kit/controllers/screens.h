#pragma once

#include "platform/uikit/UINavigationController.h"
#include "platform/uikit/UITableViewController.h"
#include "tests/kit/uikit/SceneTest.h"

// A screen that writes its life-cycle calls into a log shared by the test: "a:willAppear".
class LoggedScreen : public UIViewController {
    NS_CLASS(LoggedScreen)
public:
    std::shared_ptr<LoggedScreen> initWithName_log(const std::string& name, const std::shared_ptr<Recorder>& recorder) {
        if (!UIViewController::init()) return nullptr;
        m_name = name;
        m_recorder = recorder;
        setTitle(name);
        return self(this);
    }
    ~LoggedScreen() override { write("dealloc"); }

    void viewDidLoad() override {
        UIViewController::viewDidLoad();
        write("didLoad");
    }
    void viewWillAppear(bool animated) override {
        UIViewController::viewWillAppear(animated);
        write(animated ? "willAppear*" : "willAppear");
        if (const auto once = std::exchange(onWillAppear, nullptr)) once();
    }
    void viewDidAppear(bool animated) override {
        UIViewController::viewDidAppear(animated);
        write(animated ? "didAppear*" : "didAppear");
        if (const auto once = std::exchange(onDidAppear, nullptr)) once();
    }
    void viewWillDisappear(bool animated) override {
        UIViewController::viewWillDisappear(animated);
        write(animated ? "willDisappear*" : "willDisappear");
        if (const auto once = std::exchange(onWillDisappear, nullptr)) once();
    }
    void viewDidDisappear(bool animated) override {
        UIViewController::viewDidDisappear(animated);
        write(animated ? "didDisappear*" : "didDisappear");
    }

    std::function<void()> onWillAppear;
    std::function<void()> onDidAppear;
    std::function<void()> onWillDisappear;

private:
    void write(const char* word) const { m_recorder->write(m_name + ":" + word); }

    std::string m_name;
    std::shared_ptr<Recorder> m_recorder;
};

// A navigation controller with the screen "a" fills the window; the log is empty to begin with.
class NavigationTest : public SceneTest {
protected:
    NavigationTest() {
        a = make("a");
        navigation = UINavigationController::alloc()->initWithRootViewController(a);
        scene.window()->setRootViewController(navigation);
        touches.settle();
        log->take();
    }
    std::shared_ptr<LoggedScreen> make(const std::string& name) const {
        return LoggedScreen::alloc()->initWithName_log(name, log);
    }
    void push(const std::shared_ptr<UIViewController>& screen, bool animated = false) {
        navigation->pushViewController_animated(screen, animated);
    }
    std::string stack() const {
        std::string names;
        for (const auto& screen : navigation->viewControllers()) names += screen->title();
        return names;
    }
    // What the bar shows: back button and title.
    std::string bar() const {
        std::string text;
        collect(*navigation->navigationBar(), text);
        return text;
    }

    std::shared_ptr<Recorder> log = Recorder::alloc()->init();
    std::shared_ptr<LoggedScreen> a;
    std::shared_ptr<UINavigationController> navigation;

private:
    static void collect(const UIView& view, std::string& text) {
        for (const auto& subview : view.subviews()) {
            if (subview->accessibilityRole() == UIAccessibilityRole::Button)
                text += "<" + subview->accessibilityLabel() + "> ";
            else if (const auto label = std::dynamic_pointer_cast<UILabel>(subview))
                text += label->text();
            if (subview->accessibilityRole() != UIAccessibilityRole::Button) collect(*subview, text);
        }
    }
};
