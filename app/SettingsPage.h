#pragma once

// A bundle's page in a scene: what a window shows, and what the tour walks through.

#include "app/Bundle.h"
#include "kit/uikit/WindowScene.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

class UINavigationController;
class UIViewController;

namespace seat {
class NotifyListener;
struct PreferencesNotice;
}

namespace app {

class FailureBanner;

class SettingsPage {
public:
    // The page stands in the scene's window when this returns; `isShown()` is false if the class declined to make it.
    SettingsPage(const Bundle& bundle, Class principalClass, CGSize points, double scale);
    ~SettingsPage();
    SettingsPage(const SettingsPage&) = delete;
    SettingsPage& operator=(const SettingsPage&) = delete;

    bool isShown() const { return m_navigation != nullptr; }
    seat::WindowScene& scene() { return m_scene; }
    const std::shared_ptr<UINavigationController>& navigation() const { return m_navigation; }
    // The front screen's, else the bundle's.
    std::string title() const;

    // The screens get their disappearing calls and are let go.
    void close();

private:
    bool openAddress(const std::string& address);
    void sayNotOpened(const std::string& target);
    void sayOfPreferences(const seat::PreferencesNotice& notice);
    void sayOfResource(const std::string& path, const std::string& reason);
    void listenForFailures(const NSDictionary& manifest);
    void listen(const std::string& name, std::function<void()> heard);
    void offerCancel(const NSDictionary& manifest, const std::shared_ptr<UIViewController>& page);

    Bundle m_bundle;
    std::shared_ptr<char> m_lives = std::make_shared<char>(); // weakly held by what ends later
    seat::WindowScene m_scene;
    std::shared_ptr<UINavigationController> m_navigation;
    std::shared_ptr<FailureBanner> m_banner;
    std::shared_ptr<FailureBanner> m_notOpened;
    std::shared_ptr<FailureBanner> m_preferences;
    std::shared_ptr<FailureBanner> m_resource;
    std::vector<std::unique_ptr<seat::NotifyListener>> m_listeners;
};

} // namespace app
