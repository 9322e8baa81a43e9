#include "kit/uikit/FrameSteps.h"

#include <algorithm>

namespace seat {

void FrameSteps::start(const std::shared_ptr<void>& owner, std::function<bool(double)> step) {
    stop(owner.get());
    m_steps.push_back(std::make_shared<Step>(Step{owner, owner.get(), std::move(step)}));
}

void FrameSteps::stop(const void* owner) {
    std::erase_if(m_steps, [&](const auto& step) { return step->identity == owner; });
}

void FrameSteps::run(double time) {
    // A step may start and stop steps, its own too.
    for (const auto& step : std::vector(m_steps)) {
        if (std::find(m_steps.begin(), m_steps.end(), step) == m_steps.end()) continue;
        const auto owner = step->owner.lock();
        if (!owner || !step->run(time)) std::erase(m_steps, step);
    }
}

} // namespace seat
