#pragma once

#include "platform/uikit/UINavigationBar.h"
#include "platform/uikit/UIViewController.h"

#include <memory>
#include <vector>

// A stack of screens under one bar; screens lie below the bar's lower edge in the picture, but their views reach from
// the top of the window (a table insets its content). A screen that does not scroll gets a phone's shape in the middle
// of the window when it is first shown, and keeps that size: it is zoomed when the window changes.
class UINavigationController : public UIViewController {
    NS_CLASS(UINavigationController)
public:
    ~UINavigationController() override;

    std::shared_ptr<UINavigationController> initWithRootViewController(const std::shared_ptr<UIViewController>& root);

    // nil, and a screen that is already on the stack, are ignored.
    void pushViewController_animated(const std::shared_ptr<UIViewController>& controller, bool animated);
    // The popped screen; nil at the root.
    std::shared_ptr<UIViewController> popViewControllerAnimated(bool animated);
    const std::vector<std::shared_ptr<UIViewController>>& viewControllers() const;
    std::shared_ptr<UIViewController> topViewController() const;
    const std::shared_ptr<UINavigationBar>& navigationBar();

    void loadView() override;
    void viewWillAppear(bool animated) override;
    void viewDidAppear(bool animated) override;
    void viewWillDisappear(bool animated) override;
    void viewDidDisappear(bool animated) override;
    void viewDidLayoutSubviews() override;
    // Goes back; at the root it is somebody else's.
    bool accessibilityPerformEscape() override;
    std::shared_ptr<UIViewController> childInFront() const override;
    // The back button's action.
    void goBack();

protected:
    UINavigationController();

private:
    friend struct NavigationInternals; // kit/controllers/navigation_state.h
    struct State;
    std::unique_ptr<State> m_navigation;
};
