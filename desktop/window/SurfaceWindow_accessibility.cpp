// How assistive technology gets at the window's nodes.

#include "desktop/window/AccessibilityBridge.h"
#include "desktop/window/SurfaceWindow.h"
#include "kit/uikit/AccessibilityTree.h"
#include "kit/uikit/WindowScene.h"

#include <QAccessible>

namespace {

QAccessibleInterface* makeInterface(const QString&, QObject* object) {
    auto* const window = dynamic_cast<seat::SurfaceWindow*>(object);
    return window ? window->makeAccessibleRoot() : nullptr;
}

} // namespace

QAccessibleInterface* seat::SurfaceWindow::accessibleRoot() const {
    // The registry keeps what the factory makes, and asks it once for each window.
    QAccessible::installFactory(makeInterface);
    return QAccessible::queryAccessibleInterface(const_cast<SurfaceWindow*>(this));
}

QAccessibleInterface* seat::SurfaceWindow::makeAccessibleRoot() {
    if (!m_scene) return nullptr;
    m_accessibility =
        std::make_unique<AccessibilityBridge>(*this, m_scene->accessibility(), [this] { refreshAccessibility(); });
    m_accessibility->pointsPerUnit = [this] { return devicePixelRatio() / scale(); };
    return m_accessibility->makeRoot();
}

// Each frame brings the nodes up to date; only between a change and its frame they are behind.
void seat::SurfaceWindow::refreshAccessibility() {
    if (!m_frameIsWanted || m_isRefreshing) return;
    m_isRefreshing = true;
    m_scene->window()->layoutIfNeeded();
    m_scene->accessibility().update();
    m_isRefreshing = false;
}
