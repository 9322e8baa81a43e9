#pragma once

// A page that nobody sees, with somebody's hands on it: real touches and keys, found by what assistive technology would
// find, and pictures of what a window would show.

#include "kit/dispatch/run_loop_sources.h"
#include "kit/uikit/AccessibilityTree.h"
#include "platform/quartz/CGGeometry.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace seat {
class Toolkit;
class WindowScene;
} // namespace seat

namespace app {

// A node by its role (a word of roleNamed(); "any" for each) and name; a name that ends with "*" stands for all that
// begin like it.
struct NodeQuery {
    std::string role;
    std::string name;
};

// nullopt for a word that names no role.
std::optional<UIAccessibilityRole> roleNamed(std::string_view word);

class Stage {
public:
    // Both non-owning.
    Stage(seat::Toolkit& toolkit, seat::WindowScene& scene);
    ~Stage();
    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;

    // False when `done` does not come to hold within `seconds`. Frames go on meanwhile.
    bool waitUntil(const std::function<bool()>& done, double seconds);
    // Until nothing moves, but not longer than a second: a spinner never rests.
    void settle();

    // The first one; nullptr when there is none now. Valid until the next call.
    const seat::AccessibilityNode* find(const NodeQuery& query);
    // Scrolls until the node's middle can be touched. False when it cannot be had.
    bool reveal(const NodeQuery& query);

    void tap(CGPoint location);
    void drag(CGPoint from, CGPoint to, double seconds);
    void scroll(CGPoint location, double points);
    void key(long usage, unsigned modifiers);
    bool step(const NodeQuery& query, UIAccessibilityDirection direction, UIAccessibilityStep step);

    void resize(CGSize points, double scale);
    CGSize size() const;
    // Writes what is shown now as a PNG file; false, and a logged reason, on failure.
    bool writePicture(const std::string& path);

private:
    void wantFrame(double seconds);
    void frame();

    seat::Toolkit& m_toolkit;
    seat::WindowScene& m_scene;
    seat::SourceToken m_frameTimer = 0;
};

} // namespace app
