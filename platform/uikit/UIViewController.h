#pragma once

#include "platform/uikit/UIView.h"

#include <functional>
#include <memory>
#include <string>

class UINavigationController;

// A screen. The view is made at the first call of `view`, then `viewDidLoad` runs, once; it is never unloaded. A screen
// must be held by whoever shows it: it is retained by the navigation controller, the window or the presenting screen
// alone. Main thread only.
class UIViewController : public UIResponder {
    NS_CLASS(UIViewController)
public:
    struct Internals; // the seat's way in, opaque to everybody else
    ~UIViewController() override;

    std::shared_ptr<UIViewController> init();

    const std::shared_ptr<UIView>& view();
    void setView(std::shared_ptr<UIView> view);
    bool isViewLoaded() const;
    // nil while the view is not loaded.
    std::shared_ptr<UIView> viewIfLoaded() const;
    // Makes the view: by default a white one, of the screen's size. Called by `view`, once; an override calls setView.
    virtual void loadView();
    // What the navigation bar shows; changes at once, also while the screen is shown.
    const std::string& title() const;
    void setTitle(std::string title);

    // The life cycle, in this order: the screen that goes gets viewWillDisappear before the one that comes gets
    // viewWillAppear; viewDidDisappear before viewDidAppear.
    virtual void viewDidLoad();
    virtual void viewWillAppear(bool animated);
    virtual void viewDidAppear(bool animated);
    virtual void viewWillDisappear(bool animated);
    virtual void viewDidDisappear(bool animated);
    // After each `layoutSubviews` of the view.
    virtual void viewDidLayoutSubviews();

    // For what shows this screen (a window, a container): the view is about to come or go, and has come or gone. Each
    // sends its life-cycle call once; a call that does not change anything sends nothing.
    void beginAppearanceTransition_animated(bool isAppearing, bool animated);
    void endAppearanceTransition();

    // nil when it stands in none. Non-owning upward.
    std::shared_ptr<UINavigationController> navigationController() const;
    std::shared_ptr<UIViewController> parentViewController() const;
    std::shared_ptr<UIViewController> presentedViewController() const;
    std::shared_ptr<UIViewController> presentingViewController() const;
    // Over the whole window; the screen below gets its disappearing calls. nil is ignored; a screen that
    // stands somewhere already, or a second one over the same screen, is refused with a logged reason. The completion
    // may be empty; it runs on the main thread after the last life-cycle call.
    void presentViewController_animated_completion(const std::shared_ptr<UIViewController>& controller, bool animated,
                                                   std::function<void()> completion);
    // Takes away what this controller presents, or this controller itself where it is presented, with all that it
    // presents in turn; nothing, and no completion, where nothing is presented. The completion may be empty; it runs
    // after the last life-cycle call, at once when not animated, else after 0.4 s.
    void dismissViewControllerAnimated_completion(bool animated, std::function<void()> completion);

    std::shared_ptr<UIResponder> nextResponder() const override;
    // The screen in or over this one that the user looks at; nil where it is this one. A container overrides it.
    virtual std::shared_ptr<UIViewController> childInFront() const;
    // True while something here waits for a key press, whatever key it is: the application then leaves keys alone.
    virtual bool waitsForKey() const;

protected:
    UIViewController();

private:
    struct State;
    std::unique_ptr<State> m_controller;
};
