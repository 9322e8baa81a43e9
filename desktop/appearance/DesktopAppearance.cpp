#include "desktop/appearance/DesktopAppearance.h"

#include "desktop/appearance/font_description.h"
#include "desktop/appearance/portal_settings.h"
#include "desktop/painting/fonts.h"
#include "kit/quartz/text_size.h"
#include "platform/foundation/NSArray.h"
#include "system/bus/SessionBus.h"

#include <QEvent>
#include <QGuiApplication>
#include <QPalette>
#include <QScreen>

#include <chrono>
#include <cmath>
#include <utility>

namespace {

using namespace std::chrono_literals;

constexpr const char* portalName = "org.freedesktop.portal.Desktop";
constexpr const char* settingsInterface = "org.freedesktop.portal.Settings";
constexpr auto portalTimeout = 5s; // the bus may have to start the portal

// Light or dark by its text. The toolkit's highlight is no accent: without a desktop's theme it is a colour of the
// toolkit's own. Its font's family is asked for where fonts are chosen.
seat::DesktopLook toolkitsLook() {
    const QPalette palette = QGuiApplication::palette();
    seat::DesktopLook look;
    look.colors.isDark =
        palette.color(QPalette::WindowText).lightnessF() > palette.color(QPalette::Window).lightnessF();
    look.textScale = seat::textScaleForPointSize(QGuiApplication::font().pointSizeF());
    return look;
}

// Under X the desktop's text size is a part of the resolution that it names, of which the toolkit makes the scale of
// the whole window: a whole number of pixels a point, times that size. What is large in this way already is not made
// larger.
double textScaleInWindow(double textScale) {
    const auto* const screen = QGuiApplication::primaryScreen();
    if (textScale <= 1 || !screen || QGuiApplication::platformName() != QLatin1String("xcb")) return textScale;
    const double rest = screen->devicePixelRatio() / textScale;
    const bool isWhole = std::round(rest) >= 1 && std::abs(rest - std::round(rest)) < 0.01;
    return isWhole ? 1 : textScale;
}

} // namespace

struct seat::DesktopAppearance::State final : QObject {
    State(const std::optional<DesktopLook>& expectedLook, std::function<void(AppearanceChange)> listener)
        : expected(expectedLook), changed(std::move(listener)) {}

    void askPortal(const std::weak_ptr<State>& self);
    DesktopLook wanted() const;
    void settle();
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::ApplicationPaletteChange || event->type() == QEvent::ApplicationFontChange)
            settle();
        return QObject::eventFilter(watched, event);
    }

    std::optional<DesktopLook> expected; // nothing once the portal has answered, or could not be asked
    std::function<void(AppearanceChange)> changed;
    std::shared_ptr<NSDictionary> portal; // what it has said; nil before
    SessionBus::Token signal = 0;
};

void seat::DesktopAppearance::State::askPortal(const std::weak_ptr<State>& self) {
    const auto spaces = NSArray::array();
    for (const char* const space : portalSettingsSpaces) spaces->addObject(space);
    SessionBus::shared().call({portalName, "/org/freedesktop/portal/desktop", settingsInterface, "ReadAll"}, "as",
                              {id(spaces)}, portalTimeout, [self](const SessionBus::Reply& reply) {
                                  const auto state = self.lock();
                                  if (!state) return;
                                  state->expected.reset();
                                  if (reply.error.empty() && !reply.arguments.empty())
                                      state->portal = reply.arguments[0].object<NSDictionary>();
                                  state->settle();
                              });
}

seat::DesktopLook seat::DesktopAppearance::State::wanted() const {
    if (expected) return *expected;
    DesktopLook look = toolkitsLook();
    if (portal) applyPortalSettings(*portal, look);
    return look;
}

void seat::DesktopAppearance::State::settle() {
    const auto formerColors = appearance::look();
    const auto formerText = textGeneration();
    const DesktopLook look = wanted();
    appearance::setLook(look.colors);
    setTextScale(textScaleInWindow(look.textScale));
    setFontFamily(look.fontFamily);
    if (!changed) return;
    if (textGeneration() != formerText)
        changed(AppearanceChange::Text);
    else if (appearance::look() != formerColors)
        changed(AppearanceChange::Colors);
}

seat::DesktopAppearance::DesktopAppearance(const std::optional<DesktopLook>& expected,
                                           std::function<void(AppearanceChange)> changed)
    : m_state(std::make_shared<State>(expected, nullptr)) {
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

std::optional<seat::DesktopLook> seat::DesktopAppearance::settled() const {
    if (!m_state->portal) return std::nullopt;
    return m_state->wanted();
}
