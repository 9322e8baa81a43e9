// How assistive technology gets at the window's nodes.

#include "host/uikit/accessibility_tree.h"
#include "host/uikit/window_scene.h"
#include "host/window/accessibility_bridge.h"
#include "host/window/surface_window.h"

#include <QAccessible>

namespace {

QAccessibleInterface* makeInterface(const QString&, QObject* object) {
    auto* const window = dynamic_cast<host::SurfaceWindow*>(object);
    return window ? window->makeAccessibleRoot() : nullptr;
}

} // namespace

QAccessibleInterface* host::SurfaceWindow::accessibleRoot() const {
    // The registry keeps what the factory makes, and asks it once for each window.
    QAccessible::installFactory(makeInterface);
    return QAccessible::queryAccessibleInterface(const_cast<SurfaceWindow*>(this));
}

QAccessibleInterface* host::SurfaceWindow::makeAccessibleRoot() {
    if (!m_scene) return nullptr;
    m_accessibility =
        std::make_unique<AccessibilityBridge>(*this, m_scene->accessibility(), [this] { refreshAccessibility(); });
    m_accessibility->pointsPerUnit = [this] { return devicePixelRatio() / scale(); };
    return m_accessibility->makeRoot();
}

// Each frame brings the nodes up to date; only between a change and its frame they are behind.
void host::SurfaceWindow::refreshAccessibility() {
    if (!m_frameIsWanted || m_isRefreshing) return;
    m_isRefreshing = true;
    m_scene->window()->layoutIfNeeded();
    m_scene->accessibility().update();
    m_isRefreshing = false;
}
