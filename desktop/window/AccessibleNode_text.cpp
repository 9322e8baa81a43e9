// The texts of labels, as a reader goes through them.

#include "desktop/window/AccessibilityBridge.h"
#include "desktop/window/AccessibleNode.h"

#include <algorithm>
#include <utility>

bool seat::AccessibleNode::isLabel(const AccessibilityNode& node) {
    return node.role == UIAccessibilityRole::StaticText || node.role == UIAccessibilityRole::Heading;
}

QString seat::AccessibleNode::labelText() const {
    const auto* const found = node();
    return found && isLabel(*found) ? nameOf(*found) : QString();
}

void seat::AccessibleNode::announceText() {
    const auto* const found = m_bridge ? m_bridge->tree().node(m_identity) : nullptr;
    const QString now = found && isLabel(*found) ? nameOf(*found) : QString();
    if (now == m_announcedText) return;
    QAccessibleTextUpdateEvent event(this, 0, std::exchange(m_announcedText, now), now);
    QAccessible::updateAccessibility(&event);
}

QString seat::AccessibleNode::text(int start, int end) const {
    const QString all = labelText();
    const auto length = static_cast<int>(all.size());
    const int from = std::clamp(start, 0, length);
    return all.mid(from, (end < 0 ? length : std::clamp(end, from, length)) - from);
}

int seat::AccessibleNode::characterCount() const { return static_cast<int>(labelText().size()); }

QString seat::AccessibleNode::attributes(int, int* start, int* end) const {
    *start = 0;
    *end = characterCount();
    return {};
}
