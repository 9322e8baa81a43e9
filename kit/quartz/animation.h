#pragma once

// Movements of layer properties. A property that changes inside an animation block, while no open transaction of the
// thread disables actions and the layer's tree is shown, has its new value at once; what is drawn gets there over the
// block's duration, slow at both ends. It starts from what is drawn now. A change outside a block ends a movement of
// the same property, also when it sets the value it has.

#include <functional>
#include <memory>

namespace seat {

// The changes of one block: its completion is queued on the main queue exactly once, when the last of its movements
// has ended and the block is over. The argument is false when one of them was cut short: by another change, or because
// its layer is shown no more.
class AnimationGroup {
public:
    explicit AnimationGroup(std::function<void(bool finished)> completion);
    ~AnimationGroup();
    AnimationGroup(const AnimationGroup&) = delete;
    AnimationGroup& operator=(const AnimationGroup&) = delete;

    void cutShort() { m_finished = false; }

private:
    std::function<void(bool)> m_completion;
    bool m_finished = true;
};

// Runs `changes` at once. A duration that is zero, negative or no number changes without movement. Blocks nest: each
// has its own duration and completion. Any thread.
void runAnimationBlock(double duration, const std::function<void()>& changes,
                       std::function<void(bool finished)> completion = {});

// True inside a block in which changes move, on this thread.
bool animationsAreEnabled();

// Brings what is drawn to that time on the host clock and tells the hosts what changed; true while something still
// moves. Main thread only.
bool advanceAnimations(double now);

bool animationsAreRunning();

} // namespace seat
