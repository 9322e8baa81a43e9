#include "desktop/window/AccessibleText.h"

#include "desktop/window/AccessibilityBridge.h"
#include "desktop/window/AccessibleNode.h"

#include <algorithm>

namespace {

int unitsUpTo(const std::string& text, std::size_t bytes) {
    return static_cast<int>(
        QString::fromUtf8(text.data(), static_cast<qsizetype>(std::min(bytes, text.size()))).size());
}

std::size_t bytesUpTo(const QString& text, int units) {
    return static_cast<std::size_t>(text.left(std::clamp(units, 0, static_cast<int>(text.size()))).toUtf8().size());
}

} // namespace

seat::AccessibleText::Units seat::AccessibleText::units() const {
    const auto* const node = m_node.node();
    if (!node || !node->text) return {};
    const UIAccessibilityText& text = *node->text;
    return {QString::fromStdString(text.text), unitsUpTo(text.text, text.selectionStart),
            unitsUpTo(text.text, text.selectionEnd), unitsUpTo(text.text, text.caret)};
}

void seat::AccessibleText::tell() {
    const Units now = units();
    const Units former = std::exchange(m_told, now); // who is told may ask, and be told more
    if (now.text != former.text) {
        // What both have in common in front and at the end was not touched.
        const auto least = std::min(now.text.size(), former.text.size());
        qsizetype front = 0;
        while (front < least && now.text[front] == former.text[front]) ++front;
        qsizetype back = 0;
        while (back < least - front &&
               now.text[now.text.size() - 1 - back] == former.text[former.text.size() - 1 - back])
            ++back;
        const QString gone = former.text.mid(front, former.text.size() - front - back);
        const QString come = now.text.mid(front, now.text.size() - front - back);
        if (!gone.isEmpty()) {
            QAccessibleTextRemoveEvent told(&m_node, static_cast<int>(front), gone);
            QAccessible::updateAccessibility(&told);
        }
        if (!come.isEmpty()) {
            QAccessibleTextInsertEvent told(&m_node, static_cast<int>(front), come);
            QAccessible::updateAccessibility(&told);
        }
    }
    if (now.caret != former.caret) {
        QAccessibleTextCursorEvent told(&m_node, now.caret);
        QAccessible::updateAccessibility(&told);
    }
    if (now.start != former.start || now.end != former.end) {
        QAccessibleTextSelectionEvent told(&m_node, now.start, now.end);
        QAccessible::updateAccessibility(&told);
    }
}

void seat::AccessibleText::select(int start, int end) {
    const QString text = units().text;
    if (m_node.m_bridge)
        m_node.m_bridge->tree().selectText(m_node.m_identity, bytesUpTo(text, start), bytesUpTo(text, end));
}

int seat::AccessibleText::selectionCount() const {
    const Units now = units();
    return now.start == now.end ? 0 : 1;
}

void seat::AccessibleText::selection(int index, int* start, int* end) const {
    const Units now = units();
    const bool isThere = index == 0 && now.start != now.end;
    *start = isThere ? now.start : 0;
    *end = isThere ? now.end : 0;
}

void seat::AccessibleText::addSelection(int start, int end) { select(start, end); }

void seat::AccessibleText::setSelection(int index, int start, int end) {
    if (index == 0) select(start, end);
}

void seat::AccessibleText::removeSelection(int index) {
    const int caret = cursorPosition();
    if (index == 0) select(caret, caret);
}

int seat::AccessibleText::cursorPosition() const { return units().caret; }
void seat::AccessibleText::setCursorPosition(int position) { select(position, position); }

QString seat::AccessibleText::text(int start, int end) const {
    const QString all = units().text;
    return all.mid(start, end < 0 ? -1 : std::max(0, end - start));
}

int seat::AccessibleText::characterCount() const { return static_cast<int>(units().text.size()); }

// The field is one line high: its extent is near enough for whoever follows the caret.
QRect seat::AccessibleText::characterRect(int) const { return m_node.rect(); }
int seat::AccessibleText::offsetAtPoint(const QPoint&) const { return -1; }
void seat::AccessibleText::scrollToSubstring(int start, int) { setCursorPosition(start); }

QString seat::AccessibleText::attributes(int, int* start, int* end) const {
    *start = 0;
    *end = characterCount();
    return {};
}

void seat::AccessibleText::deleteText(int start, int end) { replaceText(start, end, {}); }
void seat::AccessibleText::insertText(int offset, const QString& text) { replaceText(offset, offset, text); }

void seat::AccessibleText::replaceText(int start, int end, const QString& text) {
    if (!m_node.m_bridge) return;
    QString all = units().text;
    const int length = static_cast<int>(all.size());
    start = std::clamp(start, 0, length);
    end = std::clamp(end < 0 ? length : end, start, length);
    all.replace(start, end - start, text);
    auto& tree = m_node.m_bridge->tree();
    const std::string changed = all.toStdString();
    if (!tree.setText(m_node.m_identity, changed)) return;
    const std::size_t caret = bytesUpTo(all, start + static_cast<int>(text.size()));
    tree.selectText(m_node.m_identity, caret, caret);
}
