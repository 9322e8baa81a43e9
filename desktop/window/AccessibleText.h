#pragma once

// The text of a text field as the accessibility bus wants it. Its places count UTF-16 units, ours bytes.

#include "platform/uikit/UIAccessibility.h"

#include <QAccessible>

namespace seat {

class AccessibleNode;

class AccessibleText final : public QAccessibleTextInterface, public QAccessibleEditableTextInterface {
public:
    // Non-owning: the node holds this.
    explicit AccessibleText(AccessibleNode& node) : m_node(node) {}

    // Tells assistive technology what has changed since it was told last.
    void tell();

    void selection(int index, int* start, int* end) const override;
    int selectionCount() const override;
    void addSelection(int start, int end) override;
    void removeSelection(int index) override;
    void setSelection(int index, int start, int end) override;
    int cursorPosition() const override;
    void setCursorPosition(int position) override;
    QString text(int start, int end) const override;
    int characterCount() const override;
    QRect characterRect(int offset) const override;
    int offsetAtPoint(const QPoint& point) const override;
    void scrollToSubstring(int start, int end) override;
    QString attributes(int offset, int* start, int* end) const override;

    void deleteText(int start, int end) override;
    void insertText(int offset, const QString& text) override;
    void replaceText(int start, int end, const QString& text) override;

private:
    struct Units {
        QString text;
        int start = 0;
        int end = 0;
        int caret = 0;
    };
    Units units() const;
    void select(int start, int end);

    AccessibleNode& m_node;
    Units m_told;
};

} // namespace seat
