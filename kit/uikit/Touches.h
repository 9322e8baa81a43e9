#pragma once

#include "platform/quartz/CGGeometry.h"

class UIView;

namespace seat {

class ManualClock;
class WindowScene;

// A finger, a wheel and a keyboard for a scene: they feed it exactly as a window does, and show a frame after each
// event. With a held clock time passes as told; without one, it is the real time. Main thread only.
class Touches {
public:
    // Both are non-owning and outlive this; the clock may be nil.
    explicit Touches(WindowScene& scene, ManualClock* clock = nullptr) : m_scene(scene), m_clock(clock) {}

    // Points are in the window; a view stands for its middle.
    void tap(CGPoint point);
    void tap(const UIView& view);
    // Down, `steps` even moves in `seconds`, up.
    void drag(CGPoint from, CGPoint to, int steps = 10, double seconds = 0.5);
    // In the view's own coordinates.
    void drag(const UIView& view, CGPoint from, CGPoint to, int steps = 10, double seconds = 0.5);

    // The pieces of which gestures are made. Several fingers have several identifiers.
    void press(CGPoint point, long identifier = 1);
    void move(CGPoint point, long identifier = 1);
    void release(long identifier = 1);
    void cancel(long identifier = 1);

    // Positive scrolls toward the end of the content.
    void wheel(CGPoint at, CGPoint delta);

    // A key by its usage (Keyboard/Keypad page); the modifiers are UIKeyEvent::Modifiers. What the keys have queued on
    // the main queue runs before `key` returns.
    void keyDown(long usage, unsigned modifiers = 0, bool isRepeat = false);
    void keyUp(long usage, unsigned modifiers = 0);
    void key(long usage, unsigned modifiers = 0);

    // Lets time pass, with a frame each sixtieth of a second and the main queue run between them.
    void wait(double seconds);
    // Until nothing moves and nothing is queued, at most `seconds`; false when something still does.
    bool settle(double seconds = 5);

private:
    void frame();

    WindowScene& m_scene;
    ManualClock* m_clock;
    CGPoint m_last; // where the finger is
};

} // namespace seat
