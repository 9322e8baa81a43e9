#pragma once

#include <functional>
#include <memory>
#include <vector>

class UIView;

namespace seat {

// Movements that go on from frame to frame and change model values as they go, such as scrolling with momentum. Main
// thread only.
class FrameSteps {
public:
    // `step` runs in each frame with the frame's time until it gives false, or `owner` has gone. An owner's former step
    // is replaced.
    void start(const std::shared_ptr<void>& owner, std::function<bool(double time)> step);
    void stop(const void* owner);
    void run(double time);
    bool isEmpty() const { return m_steps.empty(); }

private:
    struct Step {
        std::weak_ptr<void> owner;
        const void* identity = nullptr;
        std::function<bool(double)> run;
    };
    std::vector<std::shared_ptr<Step>> m_steps;
};

} // namespace seat
