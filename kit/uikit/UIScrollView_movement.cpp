// How the content of a scroll view moves: by the finger, by its momentum, by itself.

#include "kit/uikit/FrameSteps.h"
#include "kit/uikit/ScrollInternals.h"
#include "kit/uikit/ViewInternals.h"
#include "kit/uikit/WindowInternals.h"
#include "platform/foundation/time.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double animatedSeconds = 0.3;

seat::FrameSteps* frameSteps(UIScrollView& view) {
    UIWindow* const window = ViewInternals::window(view);
    return window ? WindowInternals::state(*window).frameSteps : nullptr;
}

void start(UIScrollView& view, std::function<bool(double seconds)> step) {
    const double began = platform::CACurrentMediaTime();
    if (seat::FrameSteps* const steps = frameSteps(view)) {
        steps->start(view.shared_from_this(),
                     [began, step = std::move(step)](double now) { return step(now - began); });
        WindowInternals::requestFrame(*ViewInternals::window(view));
    }
}

void showIndicator(UIScrollView& view) {
    ScrollInternals::state(view).indicator.show(*view.layer(), view.bounds(), ScrollInternals::verticalRange(view));
}

} // namespace

void seat::ScrollPanReader::began(UIGestureRecognizer& recognizer, const UITouchList& touches, UIEvent& event) {
    PanReader::began(recognizer, touches, event);
    const auto scroll = std::dynamic_pointer_cast<UIScrollView>(recognizer.view());
    // The finger that stops moving content takes hold of it; it is no tap on what happens to pass below.
    m_catches = scroll && scroll->isDecelerating() && recognizer.state() == UIGestureRecognizerStatePossible;
    if (m_catches) beginAtOnce(recognizer);
}

bool seat::ScrollPanReader::shouldBegin(const UIGestureRecognizer& recognizer) const {
    const auto scroll = std::dynamic_pointer_cast<UIScrollView>(recognizer.view());
    if (!scroll || !ScrollInternals::canScroll(*scroll)) return false;
    return m_catches || std::abs(movement().y) > std::abs(movement().x);
}

seat::ScrollRange ScrollInternals::verticalRange(const UIScrollView& view) {
    const auto& [size, inset] = std::pair(state(view).contentSize, state(view).contentInset);
    const double extent = view.bounds().size.height;
    return {-inset.top, std::max(size.height + inset.bottom - extent, -inset.top), extent};
}

bool ScrollInternals::canScroll(const UIScrollView& view) {
    const auto range = verticalRange(view);
    return range.most > range.least;
}

void ScrollInternals::moveTo(UIScrollView& view, CGPoint offset) { view.setBounds({offset, view.bounds().size}); }

void ScrollInternals::settle(UIScrollView& view) {
    if (state(view).dragging || state(view).decelerating || state(view).movesByItself) return;
    const CGPoint offset = view.contentOffset();
    const double y = verticalRange(view).clamp(offset.y);
    if (y != offset.y) moveTo(view, {offset.x, y});
}

void ScrollInternals::stop(UIScrollView& view) {
    if (!state(view).decelerating && !state(view).movesByItself) return;
    state(view).decelerating = state(view).movesByItself = false;
    if (seat::FrameSteps* const steps = frameSteps(view)) steps->stop(&view);
    state(view).indicator.fade();
}

void UIScrollView::setContentOffset_animated(CGPoint offset, bool animated) {
    if (!animated || !frameSteps(*this)) return setContentOffset(offset);
    ScrollInternals::stop(*this);
    m_scroll->movesByItself = true;
    const CGPoint from = contentOffset();
    start(*this, [this, from, offset](double seconds) {
        if (!m_scroll->movesByItself) return false;
        const double part = std::clamp(seconds / animatedSeconds, 0.0, 1.0);
        const double eased = part * part * (3 - 2 * part);
        if (part >= 1) m_scroll->movesByItself = false;
        const auto between = [eased](double a, double b) { return eased == 1 ? b : a + (b - a) * eased; };
        ScrollInternals::moveTo(*this, {between(from.x, offset.x), between(from.y, offset.y)});
        showIndicator(*this);
        if (part >= 1) m_scroll->indicator.fade();
        return part < 1;
    });
}

void ScrollInternals::handlePan(UIScrollView& view) {
    UIScrollView::State& state = ScrollInternals::state(view);
    const auto range = verticalRange(view);
    const double x = view.contentOffset().x;
    switch (state.pan->state()) {
    case UIGestureRecognizerStateBegan:
        stop(view);
        state.dragging = true;
        state.grabbedOffset = seat::unbanded(view.contentOffset().y, range);
        [[fallthrough]];
    case UIGestureRecognizerStateChanged: {
        const double pulled = state.grabbedOffset - seat::PanReader::of(*state.pan).translationInView(nullptr).y;
        moveTo(view, {x, seat::rubberBanded(pulled, range)});
        showIndicator(view);
        break;
    }
    case UIGestureRecognizerStateEnded:
    case UIGestureRecognizerStateCancelled: {
        state.dragging = false;
        const bool wasCut = state.pan->state() == UIGestureRecognizerStateCancelled;
        const double velocity = wasCut ? 0 : -seat::PanReader::of(*state.pan).velocityInView(nullptr).y;
        const seat::ScrollMotion motion(view.contentOffset().y, velocity, range);
        if (motion.duration() <= 0 || !frameSteps(view)) {
            moveTo(view, {x, motion.end()});
            state.indicator.fade();
            break;
        }
        state.decelerating = true;
        start(view, [&view, motion, x](double seconds) {
            if (!ScrollInternals::state(view).decelerating) return false; // stopped while out of the window
            const bool goesOn = seconds < motion.duration();
            if (!goesOn) ScrollInternals::state(view).decelerating = false;
            moveTo(view, {x, motion.offsetAt(seconds)});
            showIndicator(view);
            if (!goesOn) ScrollInternals::state(view).indicator.fade();
            return goesOn;
        });
        break;
    }
    default:
        break;
    }
}
