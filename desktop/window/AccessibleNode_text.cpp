// The texts of labels, as a reader goes through them.

#include "desktop/painting/fonts.h"
#include "desktop/window/AccessibilityBridge.h"
#include "desktop/window/AccessibleNode.h"
#include "desktop/window/accessibility_events.h"

#include <algorithm>
#include <cmath>
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

void seat::AccessibleNode::announceLiveText() {
    const auto* const found = m_bridge ? m_bridge->tree().node(m_identity) : nullptr;
    if (!found) return;
    if (found->role == UIAccessibilityRole::Alert)
        announce(*this, nameOf(*found), Announcement::Assertive);
    else if (found->isBusy)
        announce(*this, nameOf(*found), Announcement::Polite);
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
    const auto style = node() ? m_bridge->tree().textStyle(m_identity) : std::nullopt;
    if (!style) return {};
    const QFont font = toolkitFont(*style->font, /*scale=*/1);
    constexpr double pointsAPixel = 0.75; // of print, which sizes are told in
    const auto byte = [](double component) {
        return QString::number(std::lround(std::clamp(component, 0.0, 1.0) * 255));
    };
    static constexpr const char* alignments[] = {"left", "center", "right"};
    return QStringLiteral("font-family:%1;font-size:%2pt;font-weight:%3;color:rgb(%4,%5,%6);text-align:%7;")
        .arg(font.family(), QString::number(font.pixelSize() * pointsAPixel),
             QLatin1String(style->font->isBold() ? "bold" : "normal"), byte(style->color->red),
             byte(style->color->green), byte(style->color->blue), QLatin1String(alignments[style->alignment]));
}
