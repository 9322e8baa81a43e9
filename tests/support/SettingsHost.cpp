#include "tests/support/SettingsHost.h"

#include "kit/dispatch/main_queue.h"
#include "kit/settings_framework/bundle.h"
#include "platform/foundation/NSPropertyListSerialization.h"
#include "platform/uikit/UIApplication.h"

#include <chrono>

namespace testing_support {

SettingsHost::SettingsHost(CGSize size, double scale) : m_scene(size, scale), m_touches(m_scene, &m_clock) {
    seat::setResourceFolder(TestRoot::shipped(JOYVANE_RESOURCES));
    UIApplication::sharedApplication()->setKeyWindow(m_scene.window());
}

SettingsHost::~SettingsHost() {
    // A test that failed may leave an alert up; it would stand before the next test's page.
    while (dismissAlert()) {
    }
    close();
    seat::setResourceFolder({});
}

void SettingsHost::open(const std::shared_ptr<UIViewController>& screen) {
    m_navigation = UINavigationController::alloc()->initWithRootViewController(screen);
    m_scene.window()->setRootViewController(m_navigation);
    settle();
}

void SettingsHost::close() {
    m_scene.window()->setRootViewController(nullptr);
    m_navigation = nullptr;
    settle();
}

bool SettingsHost::waitUntil(const std::function<bool()>& done, double seconds) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
    for (;;) {
        m_loop.runReady();
        m_touches.wait(1.0 / 60);
        if (done()) return true;
        if (std::chrono::steady_clock::now() > deadline) return false;
        m_loop.runUntil([] { return false; }, 0.002);
    }
}

void SettingsHost::settle() {
    m_loop.runReady();
    m_touches.settle();
    m_loop.runReady();
}

const seat::AccessibilityNode* SettingsHost::find(const std::string& name) {
    settle();
    auto& tree = m_scene.accessibility();
    tree.update();
    for (const auto& [identity, node] : tree.nodes())
        if (node.name == name && node.isOnScreen) return &node;
    return nullptr;
}

bool SettingsHost::tap(const std::string& name) {
    const auto middle = [](const seat::AccessibilityNode& node) {
        return CGPoint{CGRectGetMidX(node.extent), CGRectGetMidY(node.extent)};
    };
    const double bottom = m_scene.size().height;
    for (int attempt = 0; attempt < 40; ++attempt) {
        if (const auto* node = find(name); node && middle(*node).y < bottom) {
            m_touches.tap(middle(*node));
            settle();
            return true;
        }
        // Down the page; when its end was reached, from the top again.
        m_touches.wheel({m_scene.size().width / 2, bottom / 2}, {0, attempt == 20 ? -1e5 : 120});
    }
    return false;
}

bool SettingsHost::tapSwitch(const std::string& name) {
    const auto* node = find(name);
    if (!node) return false;
    m_touches.tap(CGPoint{CGRectGetMaxX(node->extent) - 40, CGRectGetMidY(node->extent)});
    settle();
    return true;
}

std::optional<std::string> SettingsHost::alert() {
    settle();
    auto& tree = m_scene.accessibility();
    tree.update();
    for (const auto& [identity, node] : tree.nodes())
        if (node.role == UIAccessibilityRole::Alert)
            return node.name + (node.description.empty() ? "" : "\n" + node.description);
    return std::nullopt;
}

bool SettingsHost::dismissAlert(const std::string& button) { return alert() && tap(button); }

void SettingsHost::goBack() {
    m_navigation->popViewControllerAnimated(true);
    settle();
}

std::string SettingsHost::preferencesFile() const {
    return root() + "/var/mobile/Library/Preferences/com.quorrel.joyvane.plist";
}

void SettingsHost::writePreferences(const std::shared_ptr<NSDictionary>& values) const {
    const auto data = NSPropertyListSerialization::dataWithPropertyList_format_options_error(
        values, NSPropertyListBinaryFormat_v1_0, 0, nullptr);
    TestRoot::write(preferencesFile(), std::string(data->bytes().begin(), data->bytes().end()));
}

std::shared_ptr<NSDictionary> SettingsHost::preferences() const {
    return NSDictionary::dictionaryWithContentsOfFile("/var/mobile/Library/Preferences/com.quorrel.joyvane.plist");
}

id SettingsHost::preference(const std::string& key) const {
    const auto all = preferences();
    return all ? all->objectForKey(key) : id();
}

std::string rowsOf(PSListController& page) {
    std::string rows;
    for (const auto& row : page.specifiers()) {
        if (!rows.empty()) rows += " | ";
        rows += row->cellType() == PSCellType::Group ? "[" + row->name() + "]" : row->name();
    }
    return rows;
}

std::shared_ptr<NSDictionary> dictionary(std::initializer_list<std::pair<const char*, id>> entries) {
    const auto result = NSDictionary::dictionary();
    for (const auto& [key, value] : entries) result->setObject_forKey(value, key);
    return result;
}

} // namespace testing_support
