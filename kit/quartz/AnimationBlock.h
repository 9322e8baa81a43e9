#pragma once

#include "host/quartz/animation.h"

namespace host {

struct AnimationBlock {
    double duration = 0;
    std::shared_ptr<AnimationGroup> group;
};

// The innermost block of this thread, when changes move in it; else nullptr.
const AnimationBlock* currentAnimationBlock();

} // namespace host
