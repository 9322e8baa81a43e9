#pragma once

// Between a window's accessibility tree and the toolkit.

#include "kit/uikit/AccessibilityTree.h"

#include <QObject>
#include <QRect>

#include <functional>
#include <map>
#include <memory>

class QAccessibleInterface;
class QWindow;

namespace seat {

class AccessibleNode;

// Made when assistive technology first asks for a window. Nodes are made as they are asked for.
class AccessibilityBridge {
public:
    // Both non-owning. `refresh` brings the tree up to date if it may not be.
    AccessibilityBridge(QWindow& window, AccessibilityTree& tree, std::function<void()> refresh);
    ~AccessibilityBridge();
    AccessibilityBridge(const AccessibilityBridge&) = delete;
    AccessibilityBridge& operator=(const AccessibilityBridge&) = delete;

    // The root's node is owned by the toolkit as the window's own; call once.
    QAccessibleInterface* makeRoot();
    // nullptr when there is no such node.
    QAccessibleInterface* interfaceOf(AccessibilityIdentity identity);
    void forget(AccessibilityIdentity identity) { m_interfaces.erase(identity); }

    QWindow& window() const { return m_window; }
    // As of its last update.
    AccessibilityTree& tree() const { return m_tree; }
    // The same, brought up to date: nodes that were read from it before may be gone.
    AccessibilityTree& freshTree() const;
    // Device pixels of the screen, in the toolkit's units.
    QRect onScreen(CGRect points) const;
    CGPoint fromScreen(QPoint position) const;
    // Points of the scene in one unit of the toolkit.
    std::function<double()> pointsPerUnit;

private:
    void announceWhatStands();
    void changed(AccessibilityIdentity identity, AccessibilityChange change, int place);

    QWindow& m_window;
    AccessibilityTree& m_tree;
    std::function<void()> m_refresh;
    std::map<AccessibilityIdentity, AccessibleNode*> m_interfaces;
    QMetaObject::Connection m_title;
    std::shared_ptr<bool> m_lives = std::make_shared<bool>(true); // nil once this is ending
};

} // namespace seat
