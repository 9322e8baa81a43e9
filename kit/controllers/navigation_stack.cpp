// Bringing what a navigation controller shows in line with its stack.

#include "kit/controllers/NavigationBarInternals.h"
#include "kit/controllers/navigation_state.h"
#include "kit/controllers/screen_place.h"
#include "kit/quartz/geometry.h"
#include "kit/uikit/appearance.h"

#include <algorithm>
#include <optional>

using namespace seat;

namespace {

constexpr double pushDuration = 0.35;
constexpr double parallax = 0.3; // how far the lower screen moves of the way that the upper one does

} // namespace

bool UINavigationController::State::contains(const UIViewController* screen) const {
    return std::any_of(stack.begin(), stack.end(), [&](const auto& other) { return other.get() == screen; });
}

void UINavigationController::State::settle(bool animated) {
    isAnimated = animated;
    // Nothing is shown before the container itself is.
    if (isSettling || !controller.isViewLoaded()) return;
    const auto keepAlive = controller.shared_from_this();
    isSettling = true;
    while (!stack.empty() && shown != stack.back()) move();
    isSettling = false;
}

void UINavigationController::State::prepare(UIViewController& screen) const {
    placeScreen(screen, area->bounds().size, bar->bounds().size.height);
    if (const auto scroll = screenCarrier(screen)) {
        UIEdgeInsets inset = scroll->contentInset();
        inset.top = bar->bounds().size.height;
        scroll->setContentInset(inset);
    }
}

void UINavigationController::State::move() {
    if (transition) transition->finish();
    const auto from = shown;
    const auto to = stack.back();
    // Ending the former movement may have changed the stack.
    if (from == to) return;
    const bool isForward = !from || contains(from.get());
    const bool moves = isAnimated && from && ControllerInternals::isAppearing(controller);
    shown = to;
    prepare(*to);
    if (ControllerInternals::isAppearing(controller)) {
        if (from) from->beginAppearanceTransition_animated(/*isAppearing=*/false, moves);
        to->beginAppearanceTransition_animated(/*isAppearing=*/true, moves);
    }
    const auto coming = placedView(*to);
    const auto going = from ? placedView(*from) : nullptr;
    if (isForward)
        area->addSubview(coming);
    else
        area->insertSubview_atIndex(coming, 0);
    showBar(isForward, moves);

    const CGPoint center = coming->center();
    const double width = area->bounds().size.width * (appearance::isRightToLeft() ? -1 : 1);
    const auto shifted = [&](double fraction) { return CGPointMake(center.x + width * fraction, center.y); };
    if (moves) {
        going->setAccessibilityElementsHidden(true);
        coming->setCenter(shifted(isForward ? 1 : -parallax));
        coming->layoutIfNeeded();
        area->setUserInteractionEnabled(false);
    }
    const auto slide = [&] {
        coming->setCenter(center);
        if (going) going->setCenter(shifted(isForward ? -parallax : 1));
    };
    const std::weak_ptr<UINavigationController> weak = self(&controller);
    const auto running = ScreenTransition::start(moves ? pushDuration : 0, slide, [weak, from, to, going] {
        const auto navigation = weak.lock();
        if (navigation) {
            navigation->m_navigation->transition = nullptr;
            navigation->m_navigation->area->setUserInteractionEnabled(true);
            if (from && !navigation->m_navigation->contains(from.get())) ControllerInternals::setParent(*from, nullptr);
        }
        if (from) {
            from->view()->removeFromSuperview();
            going->removeFromSuperview();
            going->setAccessibilityElementsHidden(false);
            from->endAppearanceTransition();
        }
        // While the container is still on its way, its own arrival brings the call.
        if (!navigation || !ControllerInternals::isArriving(*navigation)) to->endAppearanceTransition();
    });
    if (running->isRunning()) transition = running;
}

void UINavigationController::State::showBar(bool isForward, bool animated) {
    if (stack.empty() || !bar) return;
    std::optional<std::string> back;
    if (stack.size() > 1) back = stack[stack.size() - 2]->title();
    const auto direction =
        isForward ? NavigationBarInternals::Direction::Forward : NavigationBarInternals::Direction::Back;
    const auto& front = *stack.back();
    NavigationBarInternals::show(*bar, {front.title(), back, self(&controller), ControllerInternals::barButton(front)},
                                 direction, animated);
}

void UINavigationController::State::layOut() {
    const CGRect bounds = controller.view()->bounds();
    if (area->frame() != bounds) {
        // Screens on the move know only the old size.
        if (transition) transition->finish();
        area->setFrame(bounds);
        if (shown) placeScreen(*shown, bounds.size, bar->bounds().size.height);
    }
    bar->setFrame(CGRectMake(0, 0, bounds.size.width, appearance::barHeight));
}
