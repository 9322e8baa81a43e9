#include "app/SettingsPage.h"

#include "app/FailureBanner.h"
#include "desktop/links/browser.h"
#include "kit/alerts/progress_canceller.h"
#include "kit/settings_framework/bundle.h"
#include "kit/uikit/front_controller.h"
#include "kit/uikit/url_opener.h"
#include "platform/dispatch.h"
#include "platform/foundation/NSArray.h"
#include "platform/uikit/UINavigationController.h"
#include "system/notify/NotifyListener.h"
#include "system/preferences/preferences_notices.h"
#include "system/socket/connection_listener.h"

#include <utility>

app::SettingsPage::SettingsPage(const Bundle& bundle, Class principalClass, CGSize points, double scale)
    : m_bundle(bundle), m_scene(points, scale) {
    seat::setResourceFolder(bundle.folder);
    seat::setResourceFaultHandler(
        [this](const std::string& path, const std::string& reason) { sayOfResource(path, reason); });
    const auto page = makePage(principalClass);
    if (!page) return;
    listenForFailures(*bundle.manifest);
    offerCancel(*bundle.manifest, page);
    seat::setURLOpener([this](const std::string& address) { return openAddress(address); });
    seat::setPreferencesNoticeHandler([this](const seat::PreferencesNotice& notice) { sayOfPreferences(notice); });
    m_navigation = UINavigationController::alloc()->initWithRootViewController(page);
    m_scene.window()->setRootViewController(m_navigation);
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
    if (m_notOpened) m_notOpened->hide();
    m_notOpened =
        FailureBanner::alloc()->initWithText("No browser could be started. Open this in one yourself: " + target);
    m_notOpened->showInWindow(m_scene.window(), FailureBanner::secondsToCopy);
}

void app::SettingsPage::sayOfPreferences(const seat::PreferencesNotice& notice) {
    const bool isLost = notice.what == seat::PreferencesNotice::What::NotStored;
    if (m_preferences) m_preferences->hide();
    m_preferences = FailureBanner::alloc()->initWithText(
        isLost ? "The setting could not be stored: " + notice.detail + ". The page shows what the file holds."
               : "The settings file was damaged. It is kept beside the new one as " + notice.detail + ".");
    m_preferences->showInWindow(m_scene.window(), FailureBanner::secondsToCopy);
}

void app::SettingsPage::sayOfResource(const std::string& path, const std::string& reason) {
    if (m_resource) m_resource->hide();
    m_resource = FailureBanner::alloc()->initWithText(
        "The page cannot be shown whole, since a file of it is damaged or missing; installing it again mends that. " +
        path + ": " + reason);
    m_resource->showInWindow(m_scene.window(), FailureBanner::secondsToCopy);
}

// The manifest says of which notifications a user has to hear, and in what words; the page itself stays silent. They
// are this process's own: what fails for the page of another root is no news here. Once the daemon is reached again
// there is nothing left to say.
void app::SettingsPage::listenForFailures(const NSDictionary& manifest) {
    const auto* const failure = manifest.objectForKey("JVNFailureNotification").string();
    const auto* const text = manifest.objectForKey("JVNFailureText").string();
    if (!failure || !text) return;
    m_banner = FailureBanner::alloc()->initWithText(*text);
    listen(*failure, [this] { m_banner->showInWindow(m_scene.window()); });
    if (const auto* const socket = manifest.objectForKey("JVNDaemonSocket").string())
        seat::setConnectionListener(
            [path = *socket, weak = std::weak_ptr<FailureBanner>(m_banner)](const std::string& connected) {
                if (connected != path) return;
                dispatch_async(dispatch_get_main_queue(), [weak] {
                    if (const auto banner = weak.lock()) banner->hide();
                });
            });
    const auto recoveries = manifest.objectForKey("JVNRecoveryNotifications").object<NSArray>();
    if (!recoveries) return;
    for (const id& name : *recoveries)
        if (name.string()) listen(*name.string(), [this] { m_banner->hide(); });
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
    m_listeners.clear();
    seat::setPreferencesNoticeHandler({});
    seat::setResourceFaultHandler({});
    seat::setURLOpener({});
    seat::setConnectionListener({});
    seat::setProgressCanceller({});
    m_scene.window()->setRootViewController(nullptr);
    m_navigation.reset();
}
