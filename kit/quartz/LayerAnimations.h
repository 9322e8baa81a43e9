#pragma once

// The movements that run in one layer.

#include "kit/quartz/LayerValues.h"
#include "kit/quartz/animation.h"

#include <memory>
#include <variant>
#include <vector>

class CALayer;

namespace seat {

// One property on its way.
template <class T> struct AnimationTrack {
    T LayerValues::*field;
    T from;
    T to;
};

struct RunningAnimation {
    std::variant<AnimationTrack<double>, AnimationTrack<CGPoint>, AnimationTrack<CGRect>, AnimationTrack<CATransform3D>,
                 AnimationTrack<CGColorRef>>
        track;
    double begin = 0;
    double duration = 0;
    std::shared_ptr<AnimationGroup> group;
};

struct LayerAnimations {
    LayerValues shown;
    std::vector<RunningAnimation> running; // one a property at most
};

template <class T> bool drives(const RunningAnimation& animation, T LayerValues::*field) {
    const auto* track = std::get_if<AnimationTrack<T>>(&animation.track);
    return track && track->field == field;
}

// Puts `shown` where the running animations stand at that time; gives true when one has reached its end.
bool moveShownValues(LayerAnimations& animations, double now);

// The list of the layers in which something runs.
void addAnimatedLayer(CALayer& layer);
void removeAnimatedLayer(CALayer& layer);

} // namespace seat
