#include "kit/quartz/animation.h"

#include "kit/quartz/AnimationBlock.h"
#include "kit/quartz/LayerInternals.h"
#include "kit/quartz/repaint.h"
#include "platform/dispatch.h"
#include "platform/quartz/CATransaction.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace seat {

namespace {

thread_local const AnimationBlock* innermostBlock = nullptr;

// Non-owning: a layer leaves the list when it dies. Never destroyed, for layers that die with the process.
std::vector<CALayer*>& animatedLayers() {
    static auto* const layers = new std::vector<CALayer*>;
    return *layers;
}

// The curve from (0, 0) to (1, 1) with the control points (0.42, 0) and (0.58, 1).
double easedProgress(double time) {
    if (time <= 0) return 0;
    if (time >= 1) return 1;
    double u = time;
    for (int i = 0; i < 6; ++i) {
        const double x = u * (1.26 + u * (u * 0.52 - 0.78));
        const double slope = 1.26 + u * (u * 1.56 - 1.56);
        u -= (x - time) / slope;
    }
    return u * u * (3 - 2 * u);
}

double between(double from, double to, double progress) { return from + (to - from) * progress; }
CGPoint between(CGPoint from, CGPoint to, double progress) {
    return {between(from.x, to.x, progress), between(from.y, to.y, progress)};
}
CGRect between(const CGRect& from, const CGRect& to, double progress) {
    return {between(from.origin, to.origin, progress),
            {between(from.size.width, to.size.width, progress), between(from.size.height, to.size.height, progress)}};
}
CATransform3D between(const CATransform3D& from, const CATransform3D& to, double progress) {
    CATransform3D result;
    for (std::size_t i = 0; i < result.m.size(); ++i) result.m[i] = between(from.m[i], to.m[i], progress);
    return result;
}
CGColorRef between(const CGColorRef& from, const CGColorRef& to, double progress) {
    if (!from && !to) return nullptr;
    // No colour is the other one, wholly transparent.
    CGColor a = from ? *from : *to;
    CGColor b = to ? *to : *from;
    if (!from) a.alpha = 0;
    if (!to) b.alpha = 0;
    return std::make_shared<CGColor>(between(a.red, b.red, progress), between(a.green, b.green, progress),
                                     between(a.blue, b.blue, progress), between(a.alpha, b.alpha, progress));
}

} // namespace

AnimationGroup::AnimationGroup(std::function<void(bool)> completion) : m_completion(std::move(completion)) {}

AnimationGroup::~AnimationGroup() {
    // Queued, so that it never runs amid the change or the frame that ended the movement.
    if (m_completion)
        dispatch_async(dispatch_get_main_queue(),
                       [completion = std::move(m_completion), finished = m_finished] { completion(finished); });
}

void runAnimationBlock(double duration, const std::function<void()>& changes, std::function<void(bool)> completion) {
    const AnimationBlock block{std::isfinite(duration) ? duration : 0,
                               std::make_shared<AnimationGroup>(std::move(completion))};
    const AnimationBlock* const outer = std::exchange(innermostBlock, &block);
    if (changes) changes();
    innermostBlock = outer;
}

const AnimationBlock* currentAnimationBlock() {
    const bool moves = innermostBlock && innermostBlock->duration > 0 && !CATransaction::disableActions();
    return moves ? innermostBlock : nullptr;
}

bool animationsAreEnabled() { return currentAnimationBlock() != nullptr; }

bool moveShownValues(LayerAnimations& animations, double now) {
    bool ended = false;
    for (const auto& animation : animations.running) {
        const double time = (now - animation.begin) / animation.duration;
        ended = ended || time >= 1;
        std::visit(
            [&](const auto& track) {
                animations.shown.*track.field =
                    time >= 1 ? track.to : between(track.from, track.to, easedProgress(time));
            },
            animation.track);
    }
    return ended;
}

void addAnimatedLayer(CALayer& layer) {
    auto& layers = animatedLayers();
    if (std::find(layers.begin(), layers.end(), &layer) == layers.end()) layers.push_back(&layer);
}

void removeAnimatedLayer(CALayer& layer) { std::erase(animatedLayers(), &layer); }

bool animationsAreRunning() { return !animatedLayers().empty(); }

bool advanceAnimations(double now) {
    const auto layers = animatedLayers();
    // First all that is left, then all that is reached: a layer may move inside another that moves too.
    for (CALayer* layer : layers) reportRepaint(*layer, Reach::Tree);
    for (CALayer* layer : layers) {
        auto& animations = LayerInternals::state(*layer).animations;
        if (!moveShownValues(*animations, now)) continue;
        std::erase_if(animations->running, [now](const RunningAnimation& animation) {
            return (now - animation.begin) / animation.duration >= 1;
        });
        if (!animations->running.empty()) continue;
        animations.reset();
        removeAnimatedLayer(*layer);
    }
    for (CALayer* layer : layers) reportRepaint(*layer, Reach::Tree);
    return animationsAreRunning();
}

} // namespace seat
