#include "desktop/window/AccessibilityBridge.h"

#include "desktop/window/AccessibleNode.h"
#include "kit/dispatch/main_queue.h"

#include <QGuiApplication>
#include <QWindow>

seat::AccessibilityBridge::AccessibilityBridge(QWindow& window, AccessibilityTree& tree, std::function<void()> refresh)
    : m_window(window), m_tree(tree), m_refresh(std::move(refresh)) {
    m_tree.setListener(
        [this](AccessibilityIdentity identity, AccessibilityChange change) { changed(identity, change); });
}

seat::AccessibilityBridge::~AccessibilityBridge() {
    m_tree.setListener(nullptr);
    m_lives = nullptr;
    // The root dies with the window.
    for (const auto& [identity, interface] : std::exchange(m_interfaces, {})) {
        interface->detach();
        if (identity != m_tree.root()) QAccessible::deleteAccessibleInterface(QAccessible::uniqueId(interface));
    }
}

seat::AccessibilityTree& seat::AccessibilityBridge::freshTree() const {
    if (m_refresh) m_refresh();
    return m_tree;
}

QAccessibleInterface* seat::AccessibilityBridge::makeRoot() {
    auto* const root = new AccessibleNode(*this, m_tree.root());
    m_interfaces[m_tree.root()] = root;
    return root;
}

QAccessibleInterface* seat::AccessibilityBridge::interfaceOf(AccessibilityIdentity identity) {
    if (!m_tree.node(identity)) return nullptr;
    if (identity == m_tree.root()) return QAccessible::queryAccessibleInterface(&m_window);
    auto& interface = m_interfaces[identity];
    if (!interface) {
        interface = new AccessibleNode(*this, identity);
        QAccessible::registerAccessibleInterface(interface);
    }
    return interface;
}

QRect seat::AccessibilityBridge::onScreen(CGRect points) const {
    const double factor = pointsPerUnit ? pointsPerUnit() : 1;
    const QPointF topLeft(points.origin.x / factor, points.origin.y / factor);
    const QPointF bottomRight(CGRectGetMaxX(points) / factor, CGRectGetMaxY(points) / factor);
    return QRectF(m_window.mapToGlobal(topLeft), m_window.mapToGlobal(bottomRight)).toRect();
}

CGPoint seat::AccessibilityBridge::fromScreen(QPoint position) const {
    const double factor = pointsPerUnit ? pointsPerUnit() : 1;
    const QPointF local = m_window.mapFromGlobal(QPointF(position));
    return {local.x() * factor, local.y() * factor};
}

// Only nodes that somebody has asked for have anybody to tell; a new node is told of by its parent.
void seat::AccessibilityBridge::changed(AccessibilityIdentity identity, AccessibilityChange change) {
    if (change == AccessibilityChange::Destroyed) {
        const auto found = m_interfaces.find(identity);
        if (found == m_interfaces.end()) return;
        found->second->announceDeparture();
        // The toolkit may be in the middle of a question to this very interface: it was the question that brought the
        // nodes up to date. So it goes when that is over, unless its view has come back by then.
        queueOnMain([this, lives = std::weak_ptr(m_lives), identity, id = QAccessible::uniqueId(found->second)] {
            if (!lives.expired() && !m_tree.node(identity)) QAccessible::deleteAccessibleInterface(id);
        });
        return;
    }
    const bool mustBeMade = change == AccessibilityChange::Created || change == AccessibilityChange::Focus;
    if (!mustBeMade && !m_interfaces.contains(identity)) return;
    auto* const node = static_cast<AccessibleNode*>(interfaceOf(identity));
    const auto* const found = m_tree.node(identity);
    if (!node || !found) return;
    // Whoever is told may ask, and that may bring the tree up to date.
    const AccessibilityNode now = *found;
    node->rememberParent();

    const auto tell = [node](QAccessible::Event event) {
        QAccessibleEvent told(node, event);
        QAccessible::updateAccessibility(&told);
    };
    switch (change) {
    case AccessibilityChange::Created:
        tell(QAccessible::ObjectCreated);
        if (now.role == UIAccessibilityRole::Alert) tell(QAccessible::Alert);
        break;
    case AccessibilityChange::Name:
        tell(QAccessible::NameChanged);
        if (now.role == UIAccessibilityRole::Alert) tell(QAccessible::Alert); // it says something else now
        node->announceText();
        break;
    case AccessibilityChange::Value:
        if (now.range) {
            QAccessibleValueChangeEvent told(node, now.range->current);
            QAccessible::updateAccessibility(&told);
        }
        if (now.isOn) {
            QAccessible::State checked;
            checked.checked = true;
            QAccessibleStateChangeEvent told(node, checked);
            QAccessible::updateAccessibility(&told);
        }
        tell(QAccessible::DescriptionChanged);
        break;
    case AccessibilityChange::State:
        tellState(*node, now);
        break;
    case AccessibilityChange::Extent:
        tell(QAccessible::LocationChanged);
        break;
    case AccessibilityChange::Focus:
        tell(QAccessible::Focus);
        break;
    case AccessibilityChange::Children:
    case AccessibilityChange::Destroyed:
        break;
    }
}

// The event says which states may have changed; who hears it reads the new ones.
void seat::AccessibilityBridge::tellState(AccessibleNode& node, const AccessibilityNode& now) {
    QAccessible::State changed;
    changed.disabled = true;
    changed.offscreen = true;
    changed.selected = now.role == UIAccessibilityRole::ListItem;
    QAccessibleStateChangeEvent told(&node, changed);
    QAccessible::updateAccessibility(&told);
}
