#include "platform/uikit/UIViewController.h"

#include "kit/controllers/controller_state.h"
#include "kit/controllers/navigation_state.h"
#include "kit/quartz/geometry.h"
#include "kit/uikit/appearance.h"
#include "kit/uikit/view_controller.h"
#include "platform/uikit/UINavigationController.h"
#include "platform/uikit/UIScreen.h"

#include <utility>

NS_CLASS_IMPLEMENTATION(UIViewController, UIResponder)

UIViewController::UIViewController() : m_controller(std::make_unique<State>()) {}

UIViewController::~UIViewController() {
    if (m_controller->view) m_controller->view->removeFromSuperview();
    if (m_controller->place.frame) m_controller->place.frame->removeFromSuperview();
}

std::shared_ptr<UIViewController> UIViewController::init() { return self(this); }

const std::shared_ptr<UIView>& UIViewController::view() {
    if (m_controller->view || std::exchange(m_controller->isLoading, true)) return m_controller->view;
    loadView();
    if (!m_controller->view) setView(UIView::alloc()->initWithFrame(CGRectZero));
    m_controller->isLoading = false;
    viewDidLoad();
    return m_controller->view;
}

void UIViewController::setView(std::shared_ptr<UIView> view) {
    if (view == m_controller->view) return;
    if (m_controller->view) seat::setViewController(*m_controller->view, nullptr);
    m_controller->view = std::move(view);
    if (m_controller->view) seat::setViewController(*m_controller->view, self(this));
}

bool UIViewController::isViewLoaded() const { return m_controller->view != nullptr; }
std::shared_ptr<UIView> UIViewController::viewIfLoaded() const { return m_controller->view; }

void UIViewController::loadView() {
    auto view = UIView::alloc()->initWithFrame(ControllerInternals::initialFrame());
    view->setBackgroundColor(seat::appearance::cardColor());
    setView(std::move(view));
}

const std::string& UIViewController::title() const { return m_controller->title; }

void UIViewController::setTitle(std::string title) {
    if (title == m_controller->title) return;
    m_controller->title = std::move(title);
    if (const auto navigation = navigationController()) NavigationInternals::barChanged(*navigation);
}

void UIViewController::viewDidLoad() {}
void UIViewController::viewWillAppear(bool) {}
void UIViewController::viewDidAppear(bool) {}
void UIViewController::viewWillDisappear(bool) {}
void UIViewController::viewDidDisappear(bool) {}
void UIViewController::viewDidLayoutSubviews() {}

void UIViewController::beginAppearanceTransition_animated(bool isAppearing, bool animated) {
    using enum State::Appearance;
    const auto keepAlive = shared_from_this();
    auto& appearance = m_controller->appearance;
    m_controller->isAnimated = animated;
    if (isAppearing) {
        if (appearance == Appearing || appearance == Appeared) return;
        // The screen is made before it hears that it comes.
        view();
        appearance = Appearing;
        viewWillAppear(animated);
    } else {
        if (appearance == Disappearing || appearance == Disappeared) return;
        appearance = Disappearing;
        viewWillDisappear(animated);
    }
}

void UIViewController::endAppearanceTransition() {
    using enum State::Appearance;
    const auto keepAlive = shared_from_this();
    auto& appearance = m_controller->appearance;
    if (appearance == Appearing) {
        appearance = Appeared;
        viewDidAppear(m_controller->isAnimated);
    } else if (appearance == Disappearing) {
        appearance = Disappeared;
        viewDidDisappear(m_controller->isAnimated);
    }
}

std::shared_ptr<UINavigationController> UIViewController::navigationController() const {
    for (auto above = parentViewController(); above; above = above->parentViewController())
        if (auto navigation = std::dynamic_pointer_cast<UINavigationController>(above)) return navigation;
    return nullptr;
}

std::shared_ptr<UIViewController> UIViewController::parentViewController() const { return m_controller->parent.lock(); }

std::shared_ptr<UIResponder> UIViewController::nextResponder() const {
    const auto above = m_controller->view ? m_controller->view->superview() : nullptr;
    if (above) return above;
    return parentViewController();
}

CGRect ControllerInternals::initialFrame() {
    const CGRect screen = UIScreen::mainScreen()->bounds();
    return CGRectIsEmpty(screen) ? CGRectMake(0, 0, 320, 480) : screen;
}

ScreenPlace& ControllerInternals::place(UIViewController& controller) { return controller.m_controller->place; }

void ControllerInternals::setBarButton(UIViewController& controller, std::shared_ptr<UIView> button) {
    controller.m_controller->barButton = std::move(button);
    if (const auto navigation = controller.navigationController()) NavigationInternals::barChanged(*navigation);
}

const std::shared_ptr<UIView>& ControllerInternals::barButton(const UIViewController& controller) {
    return controller.m_controller->barButton;
}

void ControllerInternals::setParent(UIViewController& controller, const std::shared_ptr<UIViewController>& parent) {
    controller.m_controller->parent = parent;
}

bool ControllerInternals::isAppearing(const UIViewController& controller) {
    using enum UIViewController::State::Appearance;
    const auto appearance = controller.m_controller->appearance;
    return appearance == Appearing || appearance == Appeared;
}

bool ControllerInternals::isArriving(const UIViewController& controller) {
    return controller.m_controller->appearance == UIViewController::State::Appearance::Appearing;
}

bool UIViewController::waitsForKey() const { return false; }
