#include "kit/uikit/Touches.h"

#include "kit/dispatch/ManualClock.h"
#include "kit/dispatch/main_queue.h"
#include "kit/uikit/WindowScene.h"
#include "kit/uikit/application.h"
#include "platform/foundation/time.h"

#include <chrono>
#include <thread>

namespace seat {

namespace {

constexpr double frameSeconds = 1.0 / 60;
constexpr double tapSeconds = 0.06;

double now() { return platform::CACurrentMediaTime(); }

CGPoint middle(const UIView& view) {
    const CGRect bounds = view.bounds();
    return view.convertPoint_toView({CGRectGetMidX(bounds), CGRectGetMidY(bounds)}, nullptr);
}

} // namespace

void Touches::frame() { m_scene.prepareFrame(); }

void Touches::press(CGPoint point, long identifier) {
    m_last = point;
    m_scene.window()->touchBegan(identifier, point, now());
    frame();
}

void Touches::move(CGPoint point, long identifier) {
    m_last = point;
    m_scene.window()->touchMoved(identifier, point, now());
    frame();
}

void Touches::release(long identifier) {
    m_scene.window()->touchEnded(identifier, m_last, now());
    frame();
}

void Touches::cancel(long identifier) {
    m_scene.window()->touchCancelled(identifier, now());
    frame();
}

void Touches::tap(CGPoint point) {
    press(point);
    wait(tapSeconds);
    release();
}

void Touches::tap(const UIView& view) { tap(middle(view)); }

void Touches::drag(CGPoint from, CGPoint to, int steps, double seconds) {
    press(from);
    for (int step = 1; step <= steps; ++step) {
        wait(seconds / steps);
        const double part = static_cast<double>(step) / steps;
        // The last step ends exactly where it should.
        move(step == steps ? to : CGPoint{from.x + (to.x - from.x) * part, from.y + (to.y - from.y) * part});
    }
    release();
}

void Touches::drag(const UIView& view, CGPoint from, CGPoint to, int steps, double seconds) {
    drag(view.convertPoint_toView(from, nullptr), view.convertPoint_toView(to, nullptr), steps, seconds);
}

void Touches::wheel(CGPoint at, CGPoint delta) {
    m_scene.window()->scrolled(at, delta, now());
    frame();
}

void Touches::keyDown(long usage, unsigned modifiers, bool isRepeat) {
    sendKeyEvent(UIKeyEvent::keyEvent(usage, /*isKeyDown=*/true, isRepeat, modifiers));
    frame();
}

void Touches::keyUp(long usage, unsigned modifiers) {
    sendKeyEvent(UIKeyEvent::keyEvent(usage, /*isKeyDown=*/false, /*isRepeat=*/false, modifiers));
    frame();
}

void Touches::key(long usage, unsigned modifiers) {
    keyDown(usage, modifiers);
    keyUp(usage, modifiers);
    drainMainQueue();
    frame();
}

void Touches::wait(double seconds) {
    const double end = now() + seconds;
    for (double left = seconds; left > 0; left = end - now()) {
        const double step = left < frameSeconds ? left : frameSeconds;
        if (m_clock)
            m_clock->advance(step);
        else
            std::this_thread::sleep_for(std::chrono::duration<double>(step));
        drainMainQueue();
        frame();
        if (m_clock && now() + 1e-9 >= end) break;
    }
}

bool Touches::settle(double seconds) {
    const double end = now() + seconds;
    frame();
    while (m_scene.isAnimating() || !mainQueueIsEmpty()) {
        if (now() >= end) return false;
        wait(frameSeconds);
    }
    return true;
}

} // namespace seat
