#include "app/SettingsPage.h"

#include "app/DaemonWatch.h"
#include "app/NoticeBoard.h"
#include "app/PreferencesWatch.h"
#include "app/StatusNotices.h"
#include "app/help/ActionTarget.h"
#include "app/introduction.h"
#include "app/reasons.h"
#include "app/user_units.h"
#include "desktop/links/browser.h"
#include "kit/alerts/progress_canceller.h"
#include "kit/controllers/ControllerInternals.h"
#include "kit/controllers/TextButton.h"
#include "kit/foundation/translation.h"
#include "kit/settings_framework/bundle.h"
#include "kit/settings_framework/stored_values.h"
#include "kit/uikit/front_controller.h"
#include "kit/uikit/url_opener.h"
#include "platform/dispatch.h"
#include "platform/foundation/NSArray.h"
#include "platform/uikit/UINavigationController.h"
#include "system/files/root.h"
#include "system/notify/NotifyListener.h"
#include "system/preferences/preferences_notices.h"
#include "system/process/tool_listener.h"
#include "system/socket/connection_listener.h"

#include <utility>

using seat::filled;
using seat::translated;

app::SettingsPage::SettingsPage(const Bundle& bundle, Class principalClass, CGSize points, double scale)
    : m_bundle(bundle), m_scene(points, scale), m_notices(std::make_unique<NoticeBoard>(m_scene.window())) {
    seat::setResourceFolder(bundle.folder);
    seat::setResourceFaultHandler(
        [this](const std::string& path, const std::string& reason) { sayOfResource(path, reason); });
    const auto page = makePage(principalClass);
    if (!page) return;
    listenForFailures(*bundle.manifest);
    listenForTools();
    offerCancel(*bundle.manifest, page);
    seat::setURLOpener([this](const std::string& address) { return openAddress(address); });
    seat::setPreferencesNoticeHandler([this](const seat::PreferencesNotice& notice) { sayOfPreferences(notice); });
    m_navigation = UINavigationController::alloc()->initWithRootViewController(page);
    m_scene.window()->setRootViewController(m_navigation);
    m_preferences = std::make_unique<PreferencesWatch>(seat::hostPath("/var/mobile/Library/Preferences"),
                                                       [this] { seat::showStoredValues(*m_navigation); });
}

app::SettingsPage::~SettingsPage() { close(); }

// Pages that the bundle has itself are opened from there.
bool app::SettingsPage::openAddress(const std::string& address) {
    const std::string packaged = packagedPage(m_bundle, address);
    const std::string target = packaged.empty() ? address : packaged;
    const auto ended = [this, target, lives = std::weak_ptr(m_lives)](bool isStarted) {
        if (!isStarted && !lives.expired()) sayNotOpened(target);
    };
    if (seat::openInBrowser(target, ended)) return true;
    sayNotOpened(target);
    return false;
}

void app::SettingsPage::sayNotOpened(const std::string& target) {
    m_notices->post(
        NoticeKind::NotOpened,
        {.text = filled(translated("No browser could be started. Open this in one yourself: %1"), {target})});
}

void app::SettingsPage::sayOfPreferences(const seat::PreferencesNotice& notice) {
    using What = seat::PreferencesNotice::What;
    switch (notice.what) {
    case What::NotStored:
        return m_notices->post(NoticeKind::SettingNotStored,
                               {.text = filled(translated("Your change could not be stored: %1. Put that right and "
                                                          "change it once more."),
                                               {reasonInUsersWords(notice.detail)})});
    case What::Stored:
        return m_notices->withdraw(NoticeKind::SettingNotStored);
    case What::MovedAside:
        return m_notices->post(
            NoticeKind::PreferencesMovedAside,
            {.text = filled(translated("Your settings could not be read, so this is a new beginning. "
                                       "The old file is kept as %1."),
                            {notice.detail})});
    }
}

void app::SettingsPage::sayOfResource(const std::string& path, const std::string& reason) {
    m_notices->post(
        NoticeKind::ResourceDamaged,
        {.text = filled(translated("The page cannot be shown whole, since a file of it is damaged or missing; "
                                   "installing Joyvane again mends that. %1: %2"),
                        {path, reasonInUsersWords(reason)})});
}

// The manifest says of which notifications a user has to hear, and in what words; the page itself stays silent. They
// are this process's own: what fails for the page of another root is no news here. Once the daemon is reached again
// there is nothing left to say.
void app::SettingsPage::listenForFailures(const NSDictionary& manifest) {
    const auto* const failure = manifest.objectForKey("JVNFailureNotification").string();
    const auto* const text = manifest.objectForKey("JVNFailureText").string();
    if (!failure || !text) return;
    const auto* const named = manifest.objectForKey("JVNDaemon").string();
    const std::string daemon = named ? *named : std::string();
    listen(*failure, [this, text = *text, daemon] {
        m_notices->post(NoticeKind::DaemonAbsent, daemonIsAbsent(text, daemon));
        m_notices->withdraw(NoticeKind::DaemonStarted);
        m_notices->withdraw(NoticeKind::DaemonSilent);
        m_wasDaemonAbsent = true;
        m_facts.isDaemonReached = false;
        statusChanged();
    });
    const auto isBack = [this, lives = std::weak_ptr(m_lives)] {
        if (!lives.expired()) daemonIsBack();
    };
    if (const auto* const socket = manifest.objectForKey("JVNDaemonSocket").string())
        seat::setConnectionListener([this, path = *socket, daemon, lives = std::weak_ptr(m_lives)](
                                        const std::string& connected, seat::ConnectionEvent event) {
            if (connected == path)
                dispatch_async(dispatch_get_main_queue(), [this, daemon, event, lives] {
                    if (!lives.expired()) heardOfDaemon(event, daemon);
                });
        });
    const auto recoveries = manifest.objectForKey("JVNRecoveryNotifications").object<NSArray>();
    if (!recoveries) return;
    for (const id& name : *recoveries)
        if (name.string()) listen(*name.string(), isBack);
}

// Where the session's service manager knows the daemon it can be started from here. Another root's daemon it does not
// know.
app::Notice app::SettingsPage::daemonIsAbsent(const std::string& text, const std::string& daemon) {
    const std::string unit = daemon + ".socket";
    if (daemon.empty() || !m_hasInstalledDaemon || !isUserUnit(unit)) return {.text = translated(text)};
    return {
        .text = translated(text), .actionTitle = translated("Start It"), .action = [this, unit] { startDaemon(unit); }};
}

void app::SettingsPage::startDaemon(const std::string& unit) {
    startUserUnit(unit, [this, unit, lives = std::weak_ptr(m_lives)](const std::string& reason) {
        if (!lives.expired()) triedToStart(unit, reason);
    });
}

void app::SettingsPage::triedToStart(const std::string& unit, const std::string& reason) {
    m_notices->withdraw(NoticeKind::DaemonSilent);
    if (reason.empty()) return daemonIsBack();
    m_facts.startProblem = filled(translated("The daemon could not be started: %1. “systemctl --user status %2” in a "
                                             "terminal says more."),
                                  {reasonInUsersWords(reason), unit});
    m_notices->post(NoticeKind::DaemonAbsent, {.text = m_facts.startProblem});
    statusChanged();
}

// A connection alone does not show that a daemon answers: the system, or the service manager, takes it in its place.
void app::SettingsPage::heardOfDaemon(seat::ConnectionEvent event, const std::string& daemon) {
    switch (event) {
    case seat::ConnectionEvent::Connected:
        return daemonIsBack();
    case seat::ConnectionEvent::Answered:
        return m_notices->withdraw(NoticeKind::DaemonSilent);
    case seat::ConnectionEvent::Silent:
        return m_notices->post(NoticeKind::DaemonSilent, daemonIsSilent(daemon));
    }
}

app::Notice app::SettingsPage::daemonIsSilent(const std::string& daemon) {
    const std::string text =
        translated("The daemon has not answered in time. If trying again does not help, restart it.");
    const std::string unit = daemon + ".service";
    if (daemon.empty() || !m_hasInstalledDaemon || !isUserUnit(unit)) return {.text = text};
    return {.text = text, .actionTitle = translated("Restart It"), .action = [this, unit] {
                restartUserUnit(unit, [this, unit, lives = std::weak_ptr(m_lives)](const std::string& reason) {
                    if (lives.expired()) return;
                    m_wasDaemonAbsent = true;
                    triedToStart(unit, reason);
                });
            }};
}

void app::SettingsPage::daemonIsBack() {
    m_notices->withdraw(NoticeKind::DaemonAbsent);
    m_notices->withdraw(NoticeKind::DaemonEnded);
    if (std::exchange(m_wasDaemonAbsent, false))
        m_notices->post(
            NoticeKind::DaemonStarted,
            {.text = translated("The daemon has started. What could not be done before can be tried again now.")});
    m_facts.isDaemonReached = true;
    if (m_daemon) m_daemon->look();
    statusChanged();
}

void app::SettingsPage::statusChanged() {
    if (!m_help) return;
    m_facts.status = m_daemon->status();
    m_statusNotices->show(m_facts.status);
    m_help->setFacts(m_facts);
}

void app::SettingsPage::offerHelp(Help::Options options, std::function<void()> simulate) {
    const auto* const daemon = m_bundle.manifest->objectForKey("JVNDaemon").string();
    const std::string unit = daemon ? *daemon + ".socket" : std::string();
    m_facts.isSimulated = options.isSimulated;
    m_facts.isDaemonInstalled = !unit.empty() && isUserUnit(unit);
    m_facts.canStartDaemon = m_hasInstalledDaemon && m_facts.isDaemonInstalled;
    m_help = Help::of(m_bundle, std::move(options),
                      {.startDaemon = [this, unit] { startDaemon(unit); },
                       .simulate = std::move(simulate),
                       .putAway = [] { setIntroduced(); }});
    if (!m_help || !m_navigation) return m_help.reset();
    m_helpTarget = ActionTarget::alloc()->initWithAction([this] { showHelp(); });
    const auto button =
        seat::TextButton::alloc()->initWithTitle_kind(translated("Help"), seat::TextButton::Kind::Plain);
    button->addTarget_action_forControlEvents(m_helpTarget, "run", UIControlEventTouchUpInside);
    ControllerInternals::setBarButton(*m_navigation->viewControllers().front(), button);
    m_statusNotices = std::make_unique<StatusNotices>(*m_notices, [this] { m_help->showTry(*m_navigation); });
    m_daemon = std::make_unique<DaemonWatch>(seat::hostPath(daemon_status::filePath), [this] {
        m_notices->withdraw(NoticeKind::DaemonSilent); // it has just said something
        statusChanged();
    });
    statusChanged();
}

void app::SettingsPage::showHelp() {
    if (m_help) m_help->show(*m_navigation, Help::Movement::Slides);
}

void app::SettingsPage::introduce() {
    if (m_help && !isIntroduced()) m_help->show(*m_navigation, Help::Movement::Stands);
}

void app::SettingsPage::listenForTools() {
    seat::setToolListener([this](const std::string& path, const std::string& reason) {
        if (reason.empty()) return m_notices->withdraw(NoticeKind::ToolFailed);
        m_notices->post(
            NoticeKind::ToolFailed,
            {.text = filled(translated("The program that does this, %1, does not run: %2. Cancel, and try again; "
                                       "if that does not help, install Joyvane's programs anew."),
                            {path, reasonInUsersWords(reason)})});
    });
}

void app::SettingsPage::listen(const std::string& name, std::function<void()> heard) {
    using seat::NotifyListener;
    m_listeners.push_back(std::make_unique<NotifyListener>(name, std::move(heard), NotifyListener::From::ThisProcess));
}

// What a Cancel over the page's progress panel sends it; the page itself has no such button.
void app::SettingsPage::offerCancel(const NSDictionary& manifest, const std::shared_ptr<UIViewController>& page) {
    const auto* const interrupt = manifest.objectForKey("JVNInterruptSelector").string();
    if (!interrupt || !page->respondsToSelector(*interrupt)) return;
    seat::setProgressCanceller([weak = std::weak_ptr(page), selector = *interrupt] {
        if (const auto shown = weak.lock()) objc_msgSend(*shown, selector, {});
    });
}

std::string app::SettingsPage::title() const {
    const auto front = seat::frontController(*m_scene.window());
    const std::string title = front ? front->title() : std::string();
    return title.empty() ? m_bundle.name : title;
}

void app::SettingsPage::close() {
    m_lives = nullptr;
    m_listeners.clear();
    m_preferences.reset();
    m_daemon.reset();
    m_statusNotices.reset();
    m_help.reset();
    seat::setPreferencesNoticeHandler({});
    seat::setResourceFaultHandler({});
    seat::setToolListener({});
    m_notices.reset();
    seat::setURLOpener({});
    seat::setConnectionListener({});
    seat::setProgressCanceller({});
    m_scene.window()->setRootViewController(nullptr);
    m_navigation.reset();
}
