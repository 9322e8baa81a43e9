#pragma once

#include "kit/dispatch/ManualClock.h"
#include "kit/uikit/AccessibilityTree.h"
#include "kit/uikit/Touches.h"
#include "kit/uikit/WindowScene.h"
#include "platform/foundation/NSDictionary.h"
#include "platform/settings_framework/PSListController.h"
#include "platform/uikit/UINavigationController.h"
#include "tests/support/RunLoop.h"
#include "tests/support/TestRoot.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace testing_support {

// The Settings application without a window: a fresh root, a scene with a navigation controller, a finger, a held clock
// and a run loop. Screens are operated by what can be seen of them.
class SettingsHost {
public:
    explicit SettingsHost(CGSize size = {375, 667}, double scale = 1);
    ~SettingsHost();
    SettingsHost(const SettingsHost&) = delete;
    SettingsHost& operator=(const SettingsHost&) = delete;

    const std::string& root() const { return m_root.path(); }
    seat::WindowScene& scene() { return m_scene; }
    seat::Touches& touches() { return m_touches; }
    seat::ManualClock& clock() { return m_clock; }
    testing_support::RunLoop& loop() { return m_loop; }
    const std::shared_ptr<UINavigationController>& navigation() const { return m_navigation; }

    // Shows the screen as the root of the window; its appearing calls have run when this returns.
    void open(const std::shared_ptr<UIViewController>& screen);
    // Takes it away again, as the end of the application does.
    void close();

    // Lets things happen, in real time and on the held clock, until `done` holds; false when it never does.
    bool waitUntil(const std::function<bool()>& done, double seconds = 10);
    void settle();

    // The node with this name that can be seen now; nullptr when there is none.
    const seat::AccessibilityNode* find(const std::string& name);
    // Scrolls to the row where needed and taps it; false when there is no such row.
    bool tap(const std::string& name);
    // The switch at the right end of a row.
    bool tapSwitch(const std::string& name);
    // The front alert's title and message, joined by a line break; nothing when there is none.
    std::optional<std::string> alert();
    bool dismissAlert(const std::string& button = "Dismiss");
    void goBack();

    // The preferences file, written and read as another program does it.
    std::string preferencesFile() const;
    void writePreferences(const std::shared_ptr<NSDictionary>& values) const;
    // nil when there is no readable file.
    std::shared_ptr<NSDictionary> preferences() const;
    id preference(const std::string& key) const;

private:
    TestRoot m_root;
    seat::ManualClock m_clock;
    testing_support::RunLoop m_loop;
    seat::WindowScene m_scene;
    seat::Touches m_touches;
    std::shared_ptr<UINavigationController> m_navigation;
};

// Titles of the rows in their order, groups in brackets: "[Setup] | Controller | ...".
std::string rowsOf(PSListController& page);

// A dictionary from pairs.
std::shared_ptr<NSDictionary> dictionary(std::initializer_list<std::pair<const char*, id>> entries);

} // namespace testing_support
