// Where the toolkit's mouse, touch, wheel and key events become ours.

#include "desktop/window/SurfaceWindow.h"
#include "kit/uikit/WindowScene.h"
#include "kit/uikit/application.h"
#include "kit/uikit/hid_keys.h"
#include "kit/uikit/keyboard.h"
#include "platform/foundation/time.h"
#include "platform/uikit/UIKeyEvent.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QTouchEvent>
#include <QWheelEvent>

#include <optional>

namespace {

constexpr long mouse = 0;                 // the mouse's touch; fingers follow
constexpr double pointsPerWheelStep = 53; // a step of the wheel scrolls by about a row
constexpr double wheelUnitsPerStep = 120; // eighths of a degree, 15 degrees a step

unsigned modifiers(Qt::KeyboardModifiers keys) {
    unsigned result = 0;
    if (keys & Qt::ShiftModifier) result |= UIKeyEvent::Shift;
    if (keys & Qt::ControlModifier) result |= UIKeyEvent::Control;
    if (keys & Qt::AltModifier) result |= UIKeyEvent::Alt;
    if (keys & Qt::MetaModifier) result |= UIKeyEvent::GUI;
    return result;
}

// The toolkit's name of a symbol as UIKeyEvent's; 0 for what does not navigate.
long navigationSymbol(int key) {
    namespace hid = seat::hid;
    static constexpr std::pair<int, long> symbols[] = {
        {Qt::Key_Return, hid::enter},  {Qt::Key_Enter, hid::keypadEnter},
        {Qt::Key_Escape, hid::escape}, {Qt::Key_Tab, hid::tab},
        {Qt::Key_Backtab, hid::tab},   {Qt::Key_Space, hid::space},
        {Qt::Key_Home, hid::home},     {Qt::Key_End, hid::end},
        {Qt::Key_PageUp, hid::pageUp}, {Qt::Key_PageDown, hid::pageDown},
        {Qt::Key_Left, hid::left},     {Qt::Key_Right, hid::right},
        {Qt::Key_Up, hid::up},         {Qt::Key_Down, hid::down},
    };
    for (const auto& [symbol, usage] : symbols)
        if (symbol == key) return usage;
    return 0;
}

std::optional<seat::WindowShortcut> shortcut(const QKeyEvent& event) {
    const auto modifiers = event.modifiers() & ~Qt::KeypadModifier;
    const int key = event.key();
    if (key == Qt::Key_F1 && modifiers == Qt::NoModifier) return seat::WindowShortcut::Help;
    if ((key == Qt::Key_Q || key == Qt::Key_W) && modifiers == Qt::ControlModifier) return seat::WindowShortcut::Quit;
    return std::nullopt;
}

} // namespace

CGPoint seat::SurfaceWindow::toPoints(QPointF position) const {
    const double unit = scale() / devicePixelRatio();
    return {position.x() / unit, position.y() / unit};
}

void seat::SurfaceWindow::touchBegins(long identifier, CGPoint location) {
    if (!m_scene || !m_touches.insert(identifier).second) return;
    m_scene->window()->touchBegan(identifier, location, platform::CACurrentMediaTime());
}

void seat::SurfaceWindow::touchMoves(long identifier, CGPoint location) {
    if (m_scene && m_touches.contains(identifier))
        m_scene->window()->touchMoved(identifier, location, platform::CACurrentMediaTime());
}

void seat::SurfaceWindow::touchEnds(long identifier, CGPoint location) {
    if (m_scene && m_touches.erase(identifier) != 0)
        m_scene->window()->touchEnded(identifier, location, platform::CACurrentMediaTime());
}

void seat::SurfaceWindow::cancelTouches() {
    for (const long identifier : std::exchange(m_touches, {}))
        m_scene->window()->touchCancelled(identifier, platform::CACurrentMediaTime());
}

void seat::SurfaceWindow::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) touchBegins(mouse, toPoints(event->position()));
    if (event->button() == Qt::BackButton && m_scene) goBack(*m_scene->window());
}

void seat::SurfaceWindow::mouseMoveEvent(QMouseEvent* event) { touchMoves(mouse, toPoints(event->position())); }

void seat::SurfaceWindow::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) touchEnds(mouse, toPoints(event->position()));
}

// Accepted, so that no mouse events are made of it.
void seat::SurfaceWindow::touchEvent(QTouchEvent* event) {
    event->accept();
    if (event->type() == QEvent::TouchCancel) return cancelTouches();
    for (const auto& finger : event->points()) {
        const long identifier = mouse + 1 + finger.id();
        const CGPoint location = toPoints(finger.position());
        switch (finger.state()) {
        case QEventPoint::Pressed:
            touchBegins(identifier, location);
            break;
        case QEventPoint::Updated:
            touchMoves(identifier, location);
            break;
        case QEventPoint::Released:
            touchEnds(identifier, location);
            break;
        default:
            break;
        }
    }
}

void seat::SurfaceWindow::wheelEvent(QWheelEvent* event) {
    if (!m_scene) return;
    // A touchpad tells pixels, a wheel tells its angle; both point where the content shall go.
    CGPoint delta = toPoints(event->pixelDelta());
    if (event->pixelDelta().isNull())
        delta = {event->angleDelta().x() / wheelUnitsPerStep * pointsPerWheelStep,
                 event->angleDelta().y() / wheelUnitsPerStep * pointsPerWheelStep};
    if (delta == CGPoint{}) return;
    m_scene->window()->scrolled(toPoints(event->position()), {-delta.x, -delta.y}, platform::CACurrentMediaTime());
}

void seat::SurfaceWindow::keyPressEvent(QKeyEvent* event) {
    if (!takeShortcut(*event)) deliverKey(*event, /*isDown=*/true);
}

void seat::SurfaceWindow::keyReleaseEvent(QKeyEvent* event) { deliverKey(*event, /*isDown=*/false); }

bool seat::SurfaceWindow::takeShortcut(const QKeyEvent& event) {
    const auto asked = shortcut(event);
    if (!asked || !shortcutPressed || !m_scene || frontScreenWaits(*m_scene->window())) return false;
    if (!event.isAutoRepeat()) shortcutPressed(*asked);
    return true;
}

void seat::SurfaceWindow::deliverKey(const QKeyEvent& event, bool isDown) {
    if (const auto key = m_keys.translate({event.nativeScanCode(), isDown, event.isAutoRepeat(),
                                           modifiers(event.modifiers()), navigationSymbol(event.key())}))
        sendKeyEvent(key);
}

void seat::SurfaceWindow::focusOutEvent(QFocusEvent*) { m_keys.forgetHeldKeys(); }
