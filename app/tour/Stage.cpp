#include "app/tour/Stage.h"

#include "desktop/painting/png.h"
#include "desktop/window/Toolkit.h"
#include "kit/dispatch/main_queue.h"
#include "kit/uikit/WindowScene.h"
#include "kit/uikit/appearance.h"
#include "kit/uikit/application.h"
#include "kit/uikit/snapshot.h"
#include "platform/foundation/time.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr double frameSeconds = 1.0 / 60;
constexpr double tapSeconds = 0.06;
constexpr long finger = 1;

bool matches(const std::string& name, const std::string& wanted) {
    if (wanted.ends_with('*')) return name.starts_with(std::string_view(wanted).substr(0, wanted.size() - 1));
    return name == wanted;
}

// In the order in which a reader comes across them.
const seat::AccessibilityNode* firstMatch(const seat::AccessibilityTree& tree, seat::AccessibilityIdentity from,
                                          UIAccessibilityRole role, const std::string& name) {
    const auto* const node = tree.node(from);
    if (!node) return nullptr;
    if ((role == UIAccessibilityRole::None || node->role == role) && matches(node->name, name)) return node;
    for (const auto child : node->children)
        if (const auto* const found = firstMatch(tree, child, role, name)) return found;
    return nullptr;
}

} // namespace

std::optional<UIAccessibilityRole> app::roleNamed(std::string_view word) {
    using Role = UIAccessibilityRole;
    static constexpr std::pair<std::string_view, Role> roles[] = {
        {"group", Role::Group},
        {"text", Role::StaticText},
        {"heading", Role::Heading},
        {"button", Role::Button},
        {"switch", Role::Switch},
        {"slider", Role::Slider},
        {"list", Role::List},
        {"row", Role::ListItem},
        {"image", Role::Image},
        {"alert", Role::Alert},
        {"progress", Role::ProgressIndicator},
        {"bar", Role::NavigationBar},
        {"canvas", Role::Canvas},
        {"any", Role::None},
    };
    for (const auto& [name, role] : roles)
        if (name == word) return role;
    return {};
}

app::Stage::Stage(seat::Toolkit& toolkit, seat::WindowScene& scene) : m_toolkit(toolkit), m_scene(scene) {
    m_scene.setNeedsFrame([this] { wantFrame(0); });
}

app::Stage::~Stage() {
    m_scene.setNeedsFrame(nullptr);
    seat::removeSource(m_frameTimer);
}

void app::Stage::wantFrame(double seconds) {
    if (m_frameTimer == 0) m_frameTimer = seat::addTimer(seconds, [this] { frame(); });
}

void app::Stage::frame() {
    seat::removeSource(std::exchange(m_frameTimer, 0));
    m_scene.prepareFrame();
    if (m_scene.isAnimating()) wantFrame(frameSeconds);
}

bool app::Stage::waitUntil(const std::function<bool()>& done, double seconds) {
    return m_toolkit.runUntil(done, seconds);
}

void app::Stage::settle() {
    // The end of a transition is a block on the main queue: until it has run, the window takes no touches.
    waitUntil([this] { return m_frameTimer == 0 && seat::mainQueueIsEmpty(); }, 1);
}

const seat::AccessibilityNode* app::Stage::find(const NodeQuery& query) {
    const auto role = roleNamed(query.role);
    if (!role) return nullptr;
    auto& tree = m_scene.accessibility();
    if (m_frameTimer != 0) {
        m_scene.window()->layoutIfNeeded();
        tree.update();
    }
    return firstMatch(tree, tree.root(), *role, query.name);
}

bool app::Stage::reveal(const NodeQuery& query) {
    const CGSize window = size();
    const CGPoint middle{window.width / 2, window.height / 2};
    for (int i = 0; i < 500; ++i) {
        const auto* const node = find(query);
        if (!node) return false;
        const double y = CGRectGetMidY(node->extent);
        // Rows that the bar covers cannot be touched.
        const double highest = node->role == UIAccessibilityRole::Button ? 0 : seat::appearance::barHeight;
        if (y > highest && y < window.height) return true;
        const double before = node->extent.origin.y;
        scroll(middle, std::clamp(y - middle.y, -200.0, 200.0));
        const auto* const after = find(query);
        if (!after || after->extent.origin.y == before) return false;
    }
    return false;
}

void app::Stage::tap(CGPoint location) {
    auto& window = *m_scene.window();
    window.touchBegan(finger, location, platform::CACurrentMediaTime());
    waitUntil([] { return false; }, tapSeconds);
    window.touchEnded(finger, location, platform::CACurrentMediaTime());
}

void app::Stage::drag(CGPoint from, CGPoint to, double seconds) {
    auto& window = *m_scene.window();
    window.touchBegan(finger, from, platform::CACurrentMediaTime());
    const int steps = std::max(2, static_cast<int>(std::lround(seconds / frameSeconds)));
    for (int i = 1; i <= steps; ++i) {
        waitUntil([] { return false; }, frameSeconds);
        const double part = static_cast<double>(i) / steps;
        window.touchMoved(finger, {from.x + (to.x - from.x) * part, from.y + (to.y - from.y) * part},
                          platform::CACurrentMediaTime());
    }
    waitUntil([] { return false; }, frameSeconds);
    window.touchEnded(finger, to, platform::CACurrentMediaTime());
}

void app::Stage::scroll(CGPoint location, double points) {
    m_scene.window()->scrolled(location, {0, points}, platform::CACurrentMediaTime());
}

void app::Stage::key(long usage, unsigned modifiers) {
    seat::sendKeyEvent(UIKeyEvent::keyEvent(usage, /*isKeyDown=*/true, /*isRepeat=*/false, modifiers));
    waitUntil([] { return false; }, tapSeconds);
    seat::sendKeyEvent(UIKeyEvent::keyEvent(usage, /*isKeyDown=*/false, /*isRepeat=*/false, modifiers));
}

bool app::Stage::step(const NodeQuery& query, UIAccessibilityDirection direction, UIAccessibilityStep step) {
    const auto* const node = find(query);
    return node && m_scene.accessibility().step(node->identity, direction, step);
}

void app::Stage::resize(CGSize points, double scale) { m_scene.resize(points, scale); }

CGSize app::Stage::size() const { return m_scene.size(); }

bool app::Stage::writePicture(const std::string& path) {
    const auto picture = seat::snapshot(m_scene);
    return picture && seat::writePng(path, *picture);
}
