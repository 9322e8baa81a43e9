#include "desktop/window/AccessibilityBridge.h"

#include "desktop/window/AccessibleNode.h"
#include "kit/dispatch/main_queue.h"

#include <QGuiApplication>
#include <QWindow>

seat::AccessibilityBridge::AccessibilityBridge(QWindow& window, AccessibilityTree& tree, std::function<void()> refresh)
    : m_window(window), m_tree(tree), m_refresh(std::move(refresh)) {
    m_tree.setListener([this](AccessibilityIdentity identity, AccessibilityChange change, int place) {
        changed(identity, change, place);
    });
    // The window's own node is called as the window.
    m_title = QObject::connect(&window, &QWindow::windowTitleChanged, [this] {
        if (m_tree.node(m_tree.root()) && m_interfaces.contains(m_tree.root()))
            changed(m_tree.root(), AccessibilityChange::Name, /*place=*/0);
    });
}

seat::AccessibilityBridge::~AccessibilityBridge() {
    QObject::disconnect(m_title);
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
    // What was there before anybody listened is said to who has come. After the answer to what they have asked.
    queueOnMain([this, lives = std::weak_ptr(m_lives)] {
        if (!lives.expired()) announceWhatStands();
    });
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

void seat::AccessibilityBridge::announceWhatStands() {
    std::vector<AccessibilityIdentity> all;
    for (const auto& [identity, node] : freshTree().nodes()) all.push_back(identity);
    for (const auto identity : all) {
        const auto* const found = m_tree.node(identity);
        if (!found || (found->role != UIAccessibilityRole::Alert && !found->isBusy)) continue;
        auto* const node = static_cast<AccessibleNode*>(interfaceOf(identity));
        node->announceStates();
        node->announceLiveText();
    }
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
void seat::AccessibilityBridge::changed(AccessibilityIdentity identity, AccessibilityChange change, int place) {
    if (change == AccessibilityChange::Destroyed) {
        const auto found = m_interfaces.find(identity);
        if (found == m_interfaces.end()) return;
        found->second->announceDeparture(place);
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
        node->announceArrival(place);
        node->announceStates();
        node->announceLiveText();
        break;
    case AccessibilityChange::Name:
        tell(QAccessible::NameChanged);
        node->announceText();
        node->announceLiveText();
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
        node->announceStates();
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
