#include "desktop/appearance/DesktopAppearance.h"

#include "desktop/appearance/portal_settings.h"
#include "kit/uikit/appearance.h"
#include "platform/foundation/NSArray.h"
#include "system/bus/SessionBus.h"

#include <QEvent>
#include <QGuiApplication>
#include <QPalette>

#include <chrono>
#include <utility>

namespace {

using namespace std::chrono_literals;

constexpr const char* portalName = "org.freedesktop.portal.Desktop";
constexpr const char* settingsInterface = "org.freedesktop.portal.Settings";
constexpr auto portalTimeout = 5s; // the bus may have to start the portal

// By its text. The toolkit's highlight is no accent: without a desktop's theme it is a colour of the toolkit's own.
seat::appearance::Look toolkitsLook() {
    const QPalette palette = QGuiApplication::palette();
    return {.isDark = palette.color(QPalette::WindowText).lightnessF() > palette.color(QPalette::Window).lightnessF()};
}

} // namespace

struct seat::DesktopAppearance::State final : QObject {
    explicit State(std::function<void()> listener) : changed(std::move(listener)) {}

    void askPortal(const std::weak_ptr<State>& self);
    void settle();
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::ApplicationPaletteChange) settle();
        return QObject::eventFilter(watched, event);
    }

    std::function<void()> changed;
    std::shared_ptr<NSDictionary> portal; // what it has said; nil before
    SessionBus::Token signal = 0;
};

void seat::DesktopAppearance::State::askPortal(const std::weak_ptr<State>& self) {
    const auto spaces = NSArray::array();
    for (const char* const space : portalSettingsSpaces) spaces->addObject(space);
    SessionBus::shared().call({portalName, "/org/freedesktop/portal/desktop", settingsInterface, "ReadAll"}, "as",
                              {id(spaces)}, portalTimeout, [self](const SessionBus::Reply& reply) {
                                  const auto state = self.lock();
                                  if (!state || !reply.error.empty() || reply.arguments.empty()) return;
                                  state->portal = reply.arguments[0].object<NSDictionary>();
                                  state->settle();
                              });
}

void seat::DesktopAppearance::State::settle() {
    const auto former = appearance::look();
    auto look = toolkitsLook();
    if (portal) applyPortalSettings(*portal, look);
    appearance::setLook(look);
    if (appearance::look() != former && changed) changed();
}

seat::DesktopAppearance::DesktopAppearance(std::function<void()> changed) : m_state(std::make_shared<State>(nullptr)) {
    m_state->settle();
    m_state->changed = std::move(changed);
    qGuiApp->installEventFilter(m_state.get());
    const std::weak_ptr<State> weak = m_state;
    // It says what has changed, too; asked again, it says all of it in one form.
    m_state->signal = SessionBus::shared().addSignal(
        settingsInterface, "SettingChanged",
        [weak](const BusSignal&) {
            if (const auto state = weak.lock()) state->askPortal(weak);
        },
        portalName);
    m_state->askPortal(weak);
}

seat::DesktopAppearance::~DesktopAppearance() { SessionBus::shared().remove(m_state->signal); }
