#pragma once

#include "kit/quartz/animation.h"

namespace seat {

struct AnimationBlock {
    double duration = 0;
    std::shared_ptr<AnimationGroup> group;
};

// The innermost block of this thread, when changes move in it; else nullptr.
const AnimationBlock* currentAnimationBlock();

} // namespace seat
