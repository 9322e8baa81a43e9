#include "kit/controllers/ControllerInternals.h"

#include <utility>

std::shared_ptr<ScreenTransition> ScreenTransition::start(double duration, const std::function<void()>& changes,
                                                          std::function<void()> end) {
    auto transition = std::make_shared<ScreenTransition>();
    transition->m_end = std::move(end);
    if (duration > 0) {
        UIView::animateWithDuration_animations_completion(duration, changes,
                                                          [transition](bool) { transition->finish(); });
    } else {
        changes();
        transition->finish();
    }
    return transition;
}

void ScreenTransition::finish() {
    const auto keepAlive = shared_from_this();
    if (const auto end = std::exchange(m_end, nullptr)) end();
}
