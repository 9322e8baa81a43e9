#pragma once

// One node of the accessibility tree as the toolkit, and through it the accessibility bus, wants it.

#include "kit/uikit/AccessibilityTree.h"

#include <QAccessible>

namespace seat {

class AccessibilityBridge;

// Owned by the toolkit's registry. Answers from the bridge's tree; without a bridge, or once its view has gone, it is
// invalid and answers nothing.
class AccessibleNode final : public QAccessibleInterface,
                             public QAccessibleActionInterface,
                             public QAccessibleValueInterface,
                             public QAccessibleTextInterface {
public:
    AccessibleNode(AccessibilityBridge& bridge, AccessibilityIdentity identity);
    ~AccessibleNode() override;

    // The bridge is going.
    void detach() { m_bridge = nullptr; }
    // The parent is what the tree says at its last update.
    void rememberParent();
    // The view has come or gone: where it stands, or stood, among its parent's children. Nobody is told where the
    // parent has gone, too.
    void announceArrival(int place);
    void announceDeparture(int place);
    // A label's text is another than at the last call.
    void announceText();
    // What is said wherever the user is: the node came, or says something else now.
    void announceLiveText();
    // What is other than when it was told last.
    void announceStates();

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

    // Of labels. They are one piece of text that nobody selects in, and have no cursor: its place is before the first.
    void selection(int, int* start, int* end) const override { *start = *end = 0; }
    int selectionCount() const override { return 0; }
    void addSelection(int, int) override {}
    void removeSelection(int) override {}
    void setSelection(int, int, int) override {}
    int cursorPosition() const override { return -1; }
    void setCursorPosition(int) override {}
    QString text(int start, int end) const override;
    int characterCount() const override;
    // A character's place is its label's: where the lines break is the painter's business.
    QRect characterRect(int) const override { return rect(); }
    int offsetAtPoint(const QPoint& point) const override { return rect().contains(point) ? 0 : -1; }
    void scrollToSubstring(int, int) override {}
    QString attributes(int, int* start, int* end) const override;

private:
    // As it is now, and once in each answer: asking again may take away what was given before. nullptr when there is
    // none.
    const AccessibilityNode* node() const;
    static bool isLabel(const AccessibilityNode& node);
    QString nameOf(const AccessibilityNode& node) const;
    QString labelText() const;

    AccessibilityBridge* m_bridge; // non-owning
    AccessibilityIdentity m_identity;
    AccessibilityIdentity m_parent = 0;
    QString m_announcedText;
    struct States {
        bool isBusy = false;
        bool isEnabled = false;
        bool isSelected = false;
        bool isOnScreen = false;
    };
    States m_announced; // as a reader has them that asked when the node was made
};

} // namespace seat
