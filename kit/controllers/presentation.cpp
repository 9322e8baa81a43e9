// Screens over the whole window.

#include "kit/controllers/controller_state.h"
#include "kit/quartz/geometry.h"
#include "kit/uikit/UIWindow.h"
#include "platform/log.h"

#include <utility>

namespace {

constexpr double presentationDuration = 0.4;

// The outermost container presents for all that stand in it.
std::shared_ptr<UIViewController> outermost(std::shared_ptr<UIViewController> controller) {
    while (auto parent = controller->parentViewController()) controller = std::move(parent);
    return controller;
}

CGRect below(CGRect area) { return CGRectOffset(area, 0, area.size.height); }

} // namespace

std::shared_ptr<UIViewController> UIViewController::presentedViewController() const {
    if (m_controller->presented) return m_controller->presented;
    const auto parent = parentViewController();
    return parent ? parent->presentedViewController() : nullptr;
}

std::shared_ptr<UIViewController> UIViewController::presentingViewController() const {
    if (auto presenting = m_controller->presenting.lock()) return presenting;
    const auto parent = parentViewController();
    return parent ? parent->presentingViewController() : nullptr;
}

void UIViewController::presentViewController_animated_completion(const std::shared_ptr<UIViewController>& controller,
                                                                 bool animated, std::function<void()> completion) {
    if (!controller) return;
    const auto presenter = outermost(self(this));
    State& state = *presenter->m_controller;
    if (state.presentation) state.presentation->finish();
    if (state.presented || controller == presenter || controller->parentViewController() ||
        controller->presentingViewController()) {
        NSLog("presenting \"%s\": a screen is presented already", controller->title().c_str());
        return;
    }
    state.presented = controller;
    controller->m_controller->presenting = presenter;
    controller->view()->setAccessibilityViewIsModal(true);

    presenter->beginAppearanceTransition_animated(/*isAppearing=*/false, animated);
    controller->beginAppearanceTransition_animated(/*isAppearing=*/true, animated);
    const auto window = presenter->isViewLoaded() ? presenter->view()->window() : nullptr;
    const auto view = controller->view();
    if (window) {
        view->setAutoresizingMask(UIViewAutoresizingFlexibleWidth | UIViewAutoresizingFlexibleHeight);
        view->setFrame(animated ? below(window->bounds()) : window->bounds());
        window->addSubview(view);
        if (animated) view->layoutIfNeeded();
    }
    const auto moveIn = [&] {
        if (window) view->setFrame(window->bounds());
    };
    const auto end = [presenter, controller, completion = std::move(completion)] {
        presenter->m_controller->presentation = nullptr;
        presenter->endAppearanceTransition();
        controller->endAppearanceTransition();
        if (completion) completion();
    };
    const auto transition = ScreenTransition::start(animated && window ? presentationDuration : 0, moveIn, end);
    if (transition->isRunning()) state.presentation = transition;
}

void UIViewController::dismissViewControllerAnimated_completion(bool animated, std::function<void()> completion) {
    auto presenter = outermost(self(this));
    if (!presenter->m_controller->presented) presenter = presenter->m_controller->presenting.lock();
    if (!presenter) return;
    State& state = *presenter->m_controller;
    if (state.presentation) state.presentation->finish();
    const auto controller = state.presented;
    if (!controller) return;
    // What it presents itself goes with it, unseen.
    if (controller->m_controller->presented) controller->dismissViewControllerAnimated_completion(false, {});

    controller->beginAppearanceTransition_animated(/*isAppearing=*/false, animated);
    presenter->beginAppearanceTransition_animated(/*isAppearing=*/true, animated);
    const auto view = controller->view();
    const auto window = view->window();
    const auto moveOut = [&] {
        if (window) view->setFrame(below(window->bounds()));
    };
    const auto end = [presenter, controller, completion = std::move(completion)] {
        presenter->m_controller->presentation = nullptr;
        presenter->m_controller->presented = nullptr;
        controller->m_controller->presenting.reset();
        controller->view()->setAccessibilityViewIsModal(false);
        controller->view()->removeFromSuperview();
        controller->endAppearanceTransition();
        presenter->endAppearanceTransition();
        if (completion) completion();
    };
    const auto transition = ScreenTransition::start(animated && window ? presentationDuration : 0, moveOut, end);
    if (transition->isRunning()) state.presentation = transition;
}

std::shared_ptr<UIViewController> UIViewController::childInFront() const { return m_controller->presented; }
