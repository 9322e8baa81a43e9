#pragma once

#include "platform/uikit/UIScrollView.h"
#include "platform/uikit/UIViewController.h"

#include <functional>
#include <memory>

// A movement from one screen to another. Its end comes once: when what moves has arrived, or earlier when something
// else must begin.
class ScreenTransition : public std::enable_shared_from_this<ScreenTransition> {
public:
    // Runs `changes` over `duration`, then `end`; at once when `duration` is 0. `end` keeps alive what it names.
    static std::shared_ptr<ScreenTransition> start(double duration, const std::function<void()>& changes,
                                                   std::function<void()> end);
    void finish();
    bool isRunning() const { return m_end != nullptr; }

private:
    std::function<void()> m_end;
};

// Where a screen that keeps its size was placed.
struct ScreenPlace {
    std::shared_ptr<UIScrollView> frame; // that it stands in; nil until it was first placed
    CGSize size;
};

struct UIViewController::Internals {
    // Of a view that stands nowhere yet: the screen's, so that what is set up in `viewDidLoad` has a real size.
    static CGRect initialFrame();
    // Weakly; nil takes it out.
    static void setParent(UIViewController& controller, const std::shared_ptr<UIViewController>& parent);
    // Shown, or on the way to it.
    static bool isAppearing(const UIViewController& controller);
    // On the way, but not there yet.
    static bool isArriving(const UIViewController& controller);
    static ScreenPlace& place(UIViewController& controller);
    // What stands at the right end of the navigation bar while the screen is in front, as wide as it asks to be; nil:
    // nothing.
    static void setBarButton(UIViewController& controller, std::shared_ptr<UIView> button);
    static const std::shared_ptr<UIView>& barButton(const UIViewController& controller);
};
using ControllerInternals = UIViewController::Internals;
