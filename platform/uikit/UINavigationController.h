#pragma once

#include "platform/uikit/UIViewController.h"

#include <memory>
#include <vector>

// A stack of screens under one bar; screens lie below the bar's lower edge in the picture, but their views reach from
// the top of the window (a table insets its content). A screen that does not scroll gets a phone's shape in the middle
// of the window when it is first shown, and keeps that size: it is zoomed when the window changes. Main thread only.
class UINavigationController : public UIViewController {
    NS_CLASS(UINavigationController)
public:
    struct Internals; // the seat's way in, opaque to everybody else
    ~UINavigationController() override;

    std::shared_ptr<UINavigationController> initWithRootViewController(const std::shared_ptr<UIViewController>& root);

    // The stack has changed when this returns; animated, the screens slide over 0.35 s and the life-cycle calls that
    // end the change follow. nil, and a screen that is already on the stack, are ignored; one that stands in another
    // container is refused with a logged reason.
    void pushViewController_animated(const std::shared_ptr<UIViewController>& controller, bool animated);
    // The popped screen; nil at the root, which stays. A screen that nobody else holds dies when it has gone from
    // sight.
    std::shared_ptr<UIViewController> popViewControllerAnimated(bool animated);
    const std::vector<std::shared_ptr<UIViewController>>& viewControllers() const;
    std::shared_ptr<UIViewController> topViewController() const;
    // Over the screens, 44 points high; never nil. Its title is the top screen's, its back button the title of the one
    // below.
    std::shared_ptr<UIView> navigationBar();

    void viewWillAppear(bool animated) override;
    void viewDidAppear(bool animated) override;
    void viewWillDisappear(bool animated) override;
    void viewDidDisappear(bool animated) override;

protected:
    UINavigationController();
    // The back button's action.
    void goBack();
    void loadView() override;
    void viewDidLayoutSubviews() override;
    // Goes back; at the root it is somebody else's.
    bool accessibilityPerformEscape() override;
    std::shared_ptr<UIViewController> childInFront() const override;

private:
    struct State;
    std::unique_ptr<State> m_navigation;
};
