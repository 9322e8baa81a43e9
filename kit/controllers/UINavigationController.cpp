#include "platform/uikit/UINavigationController.h"

#include "kit/controllers/navigation_state.h"
#include "kit/quartz/geometry.h"
#include "kit/uikit/appearance.h"
#include "platform/log.h"
#include "platform/runtime/method.h"

#include <algorithm>

using namespace seat;

NS_CLASS_IMPLEMENTATION(UINavigationController, UIViewController, method<&UINavigationController::goBack>("goBack"))

UINavigationController::UINavigationController() : m_navigation(std::make_unique<State>(*this)) {}
UINavigationController::~UINavigationController() = default;

std::shared_ptr<UINavigationController>
UINavigationController::initWithRootViewController(const std::shared_ptr<UIViewController>& root) {
    if (!UIViewController::init()) return nullptr;
    m_navigation->bar = UINavigationBar::alloc()->initWithFrame(CGRectMake(0, 0, 320, appearance::barHeight));
    pushViewController_animated(root, /*animated=*/false);
    return self(this);
}

void UINavigationController::pushViewController_animated(const std::shared_ptr<UIViewController>& controller,
                                                         bool animated) {
    if (!controller || controller.get() == this || m_navigation->contains(controller.get())) return;
    // Still on its way out of here: that is over now.
    if (m_navigation->transition) m_navigation->transition->finish();
    if (controller->parentViewController()) {
        NSLog("pushing \"%s\": it stands in another container", controller->title().c_str());
        return;
    }
    m_navigation->stack.push_back(controller);
    ControllerInternals::setParent(*controller, self(this));
    m_navigation->settle(animated);
}

std::shared_ptr<UIViewController> UINavigationController::popViewControllerAnimated(bool animated) {
    auto& stack = m_navigation->stack;
    if (stack.size() < 2) return nullptr;
    const auto popped = stack.back();
    stack.pop_back();
    // The shown one stays in the container until it has gone from sight.
    if (popped != m_navigation->shown) ControllerInternals::setParent(*popped, nullptr);
    m_navigation->settle(animated);
    return popped;
}

const std::vector<std::shared_ptr<UIViewController>>& UINavigationController::viewControllers() const {
    return m_navigation->stack;
}

std::shared_ptr<UIViewController> UINavigationController::topViewController() const {
    return m_navigation->stack.empty() ? nullptr : m_navigation->stack.back();
}

std::shared_ptr<UIViewController> UINavigationController::childInFront() const {
    auto presented = UIViewController::childInFront();
    return presented ? presented : topViewController();
}

std::shared_ptr<UIView> UINavigationController::navigationBar() { return m_navigation->bar; }

void UINavigationController::loadView() {
    UIViewController::loadView();
    const auto& container = view();
    container->setClipsToBounds(true);
    m_navigation->area = UIView::alloc()->initWithFrame(container->bounds());
    m_navigation->area->setBackgroundColor(appearance::pageColor());
    container->addSubview(m_navigation->area);
    container->addSubview(m_navigation->bar);
}

void UINavigationController::viewWillAppear(bool animated) {
    UIViewController::viewWillAppear(animated);
    m_navigation->settle(/*animated=*/false);
    if (m_navigation->shown) m_navigation->shown->beginAppearanceTransition_animated(/*isAppearing=*/true, animated);
}

void UINavigationController::viewDidAppear(bool animated) {
    UIViewController::viewDidAppear(animated);
    if (m_navigation->shown && !m_navigation->transition) m_navigation->shown->endAppearanceTransition();
}

void UINavigationController::viewWillDisappear(bool animated) {
    UIViewController::viewWillDisappear(animated);
    if (m_navigation->transition) m_navigation->transition->finish();
    if (m_navigation->shown) m_navigation->shown->beginAppearanceTransition_animated(/*isAppearing=*/false, animated);
}

void UINavigationController::viewDidDisappear(bool animated) {
    UIViewController::viewDidDisappear(animated);
    if (m_navigation->shown) m_navigation->shown->endAppearanceTransition();
}

void UINavigationController::viewDidLayoutSubviews() {
    UIViewController::viewDidLayoutSubviews();
    m_navigation->layOut();
}

bool UINavigationController::accessibilityPerformEscape() {
    if (m_navigation->stack.size() < 2) return UIViewController::accessibilityPerformEscape();
    goBack();
    return true;
}

void UINavigationController::goBack() { popViewControllerAnimated(/*animated=*/true); }

void NavigationInternals::barChanged(UINavigationController& controller) {
    controller.m_navigation->showBar(/*isForward=*/true, /*animated=*/false);
}
