// The texts of labels, as a reader goes through them.

#include "host/window/accessibility_bridge.h"
#include "host/window/accessible_node.h"

#include <algorithm>
#include <utility>

bool host::AccessibleNode::isLabel(const AccessibilityNode& node) {
    return node.role == UIAccessibilityRole::StaticText || node.role == UIAccessibilityRole::Heading;
}

QString host::AccessibleNode::labelText() const {
    const auto* const found = node();
    return found && isLabel(*found) ? nameOf(*found) : QString();
}

void host::AccessibleNode::announceText() {
    const auto* const found = m_bridge ? m_bridge->tree().node(m_identity) : nullptr;
    const QString now = found && isLabel(*found) ? nameOf(*found) : QString();
    if (now == m_announcedText) return;
    QAccessibleTextUpdateEvent event(this, 0, std::exchange(m_announcedText, now), now);
    QAccessible::updateAccessibility(&event);
}

QString host::AccessibleNode::text(int start, int end) const {
    const QString all = labelText();
    const auto length = static_cast<int>(all.size());
    const int from = std::clamp(start, 0, length);
    return all.mid(from, (end < 0 ? length : std::clamp(end, from, length)) - from);
}

int host::AccessibleNode::characterCount() const { return static_cast<int>(labelText().size()); }

QString host::AccessibleNode::attributes(int, int* start, int* end) const {
    *start = 0;
    *end = characterCount();
    return {};
}
