#include "kit/quartz/layer_change.h"

#include "kit/quartz/AnimationBlock.h"
#include "kit/quartz/LayerHost.h"
#include "kit/quartz/LayerInternals.h"
#include "platform/foundation/time.h"

#include <algorithm>

namespace seat {

namespace {

template <class T> auto runningAnimation(LayerInternals::State& state, T LayerValues::*field) {
    auto& running = state.animations->running;
    return std::find_if(running.begin(), running.end(),
                        [field](const RunningAnimation& animation) { return drives(animation, field); });
}

template <class T> bool isMoving(LayerInternals::State& state, T LayerValues::*field) {
    return state.animations && runningAnimation(state, field) != state.animations->running.end();
}

template <class T> bool isSame(const T& a, const T& b) { return a == b; }
bool isSame(const CGColorRef& a, const CGColorRef& b) { return isSameColor(a, b); }

template <class T> bool changes(LayerInternals::State& state, T LayerValues::*field, const T& value) {
    return !isSame(state.model.*field, value) || isMoving(state, field);
}

template <class T> void endMovement(LayerInternals::State& state, T LayerValues::*field) {
    if (!isMoving(state, field)) return;
    const auto animation = runningAnimation(state, field);
    animation->group->cutShort();
    state.animations->running.erase(animation);
}

// The block in which a change of the layer moves; nullptr: it jumps.
const AnimationBlock* blockFor(const CALayer& layer) {
    const AnimationBlock* const block = currentAnimationBlock();
    return block && LayerInternals::host(layer) ? block : nullptr;
}

template <class T> void jump(CALayer& layer, T LayerValues::*field, T value) {
    auto& state = LayerInternals::state(layer);
    endMovement(state, field);
    if (state.animations) {
        state.animations->shown.*field = value;
        if (state.animations->running.empty()) {
            state.animations.reset();
            removeAnimatedLayer(layer);
        }
    }
    state.model.*field = std::move(value);
}

template <class T> void move(CALayer& layer, T LayerValues::*field, T value, const AnimationBlock& block) {
    auto& state = LayerInternals::state(layer);
    if (!state.animations) {
        state.animations = std::make_unique<LayerAnimations>();
        state.animations->shown = state.model;
    }
    endMovement(state, field);
    state.animations->running.push_back({AnimationTrack<T>{field, state.animations->shown.*field, value},
                                         platform::CACurrentMediaTime(), block.duration, block.group});
    state.model.*field = std::move(value);
    addAnimatedLayer(layer);
    LayerInternals::host(layer)->animationsStarted();
}

} // namespace

template <class T> void change(CALayer& layer, T LayerValues::*field, T value, Reach reach) {
    if (!changes(LayerInternals::state(layer), field, value)) return;
    if (const AnimationBlock* const block = blockFor(layer)) {
        move(layer, field, std::move(value), *block);
        return;
    }
    const RepaintAround repaint(layer, reach);
    jump(layer, field, std::move(value));
}

template void change(CALayer&, double LayerValues::*, double, Reach);
template void change(CALayer&, CATransform3D LayerValues::*, CATransform3D, Reach);
template void change(CALayer&, CGColorRef LayerValues::*, CGColorRef, Reach);

void changeGeometry(CALayer& layer, const CGRect& bounds, CGPoint position) {
    auto& state = LayerInternals::state(layer);
    const bool newBounds = changes(state, &LayerValues::bounds, bounds);
    const bool newPosition = changes(state, &LayerValues::position, position);
    if (!newBounds && !newPosition) return;
    state.exactFrame.reset();
    if (const AnimationBlock* const block = blockFor(layer)) {
        if (newBounds) move(layer, &LayerValues::bounds, bounds, *block);
        if (newPosition) move(layer, &LayerValues::position, position, *block);
        return;
    }
    const RepaintAround repaint(layer, Reach::Tree);
    if (newBounds) jump(layer, &LayerValues::bounds, bounds);
    if (newPosition) jump(layer, &LayerValues::position, position);
}

} // namespace seat
