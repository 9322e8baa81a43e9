#pragma once

// One node of the accessibility tree as the toolkit, and through it the accessibility bus, wants it.

#include "host/uikit/accessibility_tree.h"

#include <QAccessible>

namespace host {

class AccessibilityBridge;

// Owned by the toolkit's registry. Answers from the bridge's tree; without a bridge, or once its view has gone, it is
// invalid and answers nothing.
class AccessibleNode final : public QAccessibleInterface,
                             public QAccessibleActionInterface,
                             public QAccessibleValueInterface {
public:
    AccessibleNode(AccessibilityBridge& bridge, AccessibilityIdentity identity);
    ~AccessibleNode() override;

    // The bridge is going.
    void detach() { m_bridge = nullptr; }
    // The view has gone: until the end of the call the node still names its parent.
    void announceDeparture();
    void rememberParent();

    bool isValid() const override;
    QObject* object() const override;
    QWindow* window() const override;
    void* interface_cast(QAccessible::InterfaceType type) override;

    QAccessibleInterface* parent() const override;
    QAccessibleInterface* child(int index) const override;
    QAccessibleInterface* childAt(int x, int y) const override;
    QAccessibleInterface* focusChild() const override;
    int childCount() const override;
    int indexOfChild(const QAccessibleInterface* child) const override;

    QString text(QAccessible::Text kind) const override;
    void setText(QAccessible::Text, const QString&) override {}
    QRect rect() const override;
    QAccessible::Role role() const override;
    QAccessible::State state() const override;

    QStringList actionNames() const override;
    void doAction(const QString& name) override;
    QStringList keyBindingsForAction(const QString&) const override { return {}; }

    QVariant currentValue() const override;
    void setCurrentValue(const QVariant& value) override;
    QVariant maximumValue() const override;
    QVariant minimumValue() const override;
    QVariant minimumStepSize() const override;

private:
    // nullptr when there is none.
    const AccessibilityNode* node() const;

    AccessibilityBridge* m_bridge; // non-owning
    AccessibilityIdentity m_identity;
    AccessibilityIdentity m_parent = 0;
    bool m_isLeaving = false;
};

} // namespace host
