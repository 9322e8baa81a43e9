#pragma once

// A bundle's page in a scene: what a window shows, and what the tour walks through.

#include "app/Bundle.h"
#include "app/help/Help.h"
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
enum class ConnectionEvent;
}

namespace app {

class ActionTarget;
class DaemonWatch;
class NoticeBoard;
class PreferencesWatch;
class StatusNotices;
struct Notice;

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

    // The daemon is the one that the session's service manager starts: a notice may offer to do that.
    void setHasInstalledDaemon() { m_hasInstalledDaemon = true; }
    // From now on there is help, if the bundle has any, and notices of what the daemon knows. `simulate` opens a
    // program with simulated controllers; empty: there is no need of it.
    void offerHelp(Help::Options options, std::function<void()> simulate);
    void showHelp();
    // Shows the help where nobody has ever put it away.
    void introduce();
    // The program's own notices, over the page.
    NoticeBoard& notices() { return *m_notices; }

    // The screens get their disappearing calls and are let go.
    void close();

private:
    bool openAddress(const std::string& address);
    void sayNotOpened(const std::string& target);
    void sayOfPreferences(const seat::PreferencesNotice& notice);
    void sayOfResource(const std::string& path, const std::string& reason);
    void listenForFailures(const NSDictionary& manifest);
    void listenForTools();
    void heardOfDaemon(seat::ConnectionEvent event, const std::string& daemon);
    Notice daemonIsAbsent(const std::string& text, const std::string& daemon);
    Notice daemonIsSilent(const std::string& daemon);
    void startDaemon(const std::string& unit);
    void triedToStart(const std::string& unit, const std::string& reason);
    void listen(const std::string& name, std::function<void()> heard);
    void daemonIsBack();
    void statusChanged();
    void offerCancel(const NSDictionary& manifest, const std::shared_ptr<UIViewController>& page);

    Bundle m_bundle;
    std::shared_ptr<char> m_lives = std::make_shared<char>(); // weakly held by what ends later
    seat::WindowScene m_scene;
    std::shared_ptr<UINavigationController> m_navigation;
    std::unique_ptr<NoticeBoard> m_notices;
    std::unique_ptr<PreferencesWatch> m_preferences;
    bool m_hasInstalledDaemon = false;
    bool m_wasDaemonAbsent = false;        // which was told
    std::unique_ptr<DaemonWatch> m_daemon; // these four: nil while no help was offered
    std::unique_ptr<StatusNotices> m_statusNotices;
    std::unique_ptr<Help> m_help;
    std::shared_ptr<ActionTarget> m_helpTarget;
    HelpFacts m_facts;
    std::vector<std::unique_ptr<seat::NotifyListener>> m_listeners;
};

} // namespace app
