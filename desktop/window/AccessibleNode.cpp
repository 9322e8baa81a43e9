#include "desktop/window/AccessibleNode.h"

#include "desktop/window/AccessibilityBridge.h"
#include "desktop/window/accessibility_events.h"

#include <QGuiApplication>
#include <QWindow>

namespace {

using Role = UIAccessibilityRole;

QAccessible::Role toolkitRole(Role role) {
    switch (role) {
    case Role::Window:
        return QAccessible::Window;
    case Role::Group:
        return QAccessible::Grouping;
    case Role::StaticText:
        return QAccessible::StaticText;
    case Role::Heading:
        return QAccessible::Heading;
    case Role::Button:
        return QAccessible::Button;
    case Role::Switch:
        return QAccessible::CheckBox;
    case Role::Slider:
        return QAccessible::Slider;
    case Role::List:
        return QAccessible::List;
    case Role::ListItem:
        return QAccessible::ListItem;
    case Role::Image:
        return QAccessible::Graphic;
    case Role::Alert:
        return QAccessible::AlertMessage;
    case Role::ProgressIndicator:
        return QAccessible::ProgressBar;
    case Role::NavigationBar:
        return QAccessible::ToolBar;
    case Role::Canvas:
        return QAccessible::Canvas;
    case Role::None:
        break;
    }
    return QAccessible::NoRole;
}

struct StepAction {
    const char* name;
    UIAccessibilityDirection direction;
    UIAccessibilityStep step;
};

constexpr StepAction canvasActions[] = {
    {"Left", UIAccessibilityDirection::Left, UIAccessibilityStep::Small},
    {"Right", UIAccessibilityDirection::Right, UIAccessibilityStep::Small},
    {"Up", UIAccessibilityDirection::Up, UIAccessibilityStep::Small},
    {"Down", UIAccessibilityDirection::Down, UIAccessibilityStep::Small},
    {"Far Left", UIAccessibilityDirection::Left, UIAccessibilityStep::Large},
    {"Far Right", UIAccessibilityDirection::Right, UIAccessibilityStep::Large},
    {"Far Up", UIAccessibilityDirection::Up, UIAccessibilityStep::Large},
    {"Far Down", UIAccessibilityDirection::Down, UIAccessibilityStep::Large},
};

QStringList possibleActions(const seat::AccessibilityNode& node) {
    using Actions = QAccessibleActionInterface;
    QStringList names;
    if (node.canPress) names << (node.isOn ? Actions::toggleAction() : Actions::pressAction());
    if (node.isEnabled && node.role == Role::Slider) names << Actions::increaseAction() << Actions::decreaseAction();
    if (node.isEnabled && node.role == Role::Canvas)
        for (const auto& action : canvasActions) names << QString::fromLatin1(action.name);
    if (node.isFocusable) names << Actions::setFocusAction();
    return names;
}

} // namespace

seat::AccessibleNode::AccessibleNode(AccessibilityBridge& bridge, AccessibilityIdentity identity)
    : m_bridge(&bridge), m_identity(identity) {
    rememberParent();
    if (const auto* const found = bridge.tree().node(identity)) {
        if (isLabel(*found)) m_announcedText = nameOf(*found);
        m_announced = {/*isBusy=*/false, found->isEnabled, found->isSelected, found->isOnScreen};
    }
}

seat::AccessibleNode::~AccessibleNode() {
    if (m_bridge) m_bridge->forget(m_identity);
}

void seat::AccessibleNode::rememberParent() {
    if (const auto* const found = m_bridge->tree().node(m_identity)) m_parent = found->parent;
}

void seat::AccessibleNode::announceArrival(int place) {
    if (auto* const parent = m_bridge->interfaceOf(m_parent)) tellOfChild(*parent, *this, ChildEvent::Added, place);
}

void seat::AccessibleNode::announceDeparture(int place) {
    if (std::exchange(m_announced.isBusy, false)) tellState(*this, "busy", /*has=*/false);
    if (auto* const parent = m_bridge->interfaceOf(m_parent)) tellOfChild(*parent, *this, ChildEvent::Removed, place);
}

void seat::AccessibleNode::announceStates() {
    const auto* const found = m_bridge->tree().node(m_identity);
    if (!found) return;
    const auto tell = [this](const char* state, bool& told, bool has) {
        if (std::exchange(told, has) != has) tellState(*this, state, has);
    };
    tell("busy", m_announced.isBusy, found->isBusy);
    if (found->isEnabled != m_announced.isEnabled) tellState(*this, "sensitive", found->isEnabled);
    tell("enabled", m_announced.isEnabled, found->isEnabled);
    tell("selected", m_announced.isSelected, found->isSelected);
    tell("showing", m_announced.isOnScreen, found->isOnScreen);
}

const seat::AccessibilityNode* seat::AccessibleNode::node() const {
    return m_bridge ? m_bridge->freshTree().node(m_identity) : nullptr;
}

bool seat::AccessibleNode::isValid() const { return node(); }

QObject* seat::AccessibleNode::object() const {
    return m_bridge && m_bridge->tree().root() == m_identity ? &m_bridge->window() : nullptr;
}

QWindow* seat::AccessibleNode::window() const { return m_bridge ? &m_bridge->window() : nullptr; }

void* seat::AccessibleNode::interface_cast(QAccessible::InterfaceType type) {
    const auto* const found = node();
    if (!found) return nullptr;
    // Clients ask once what interfaces a node has, so that it does not depend on what can be done just now.
    if (type == QAccessible::ActionInterface && !possibleActions(*found).isEmpty())
        return static_cast<QAccessibleActionInterface*>(this);
    if (type == QAccessible::ValueInterface && found->range) return static_cast<QAccessibleValueInterface*>(this);
    if (type == QAccessible::TextInterface && isLabel(*found)) return static_cast<QAccessibleTextInterface*>(this);
    return nullptr;
}

QAccessibleInterface* seat::AccessibleNode::parent() const {
    if (!m_bridge) return nullptr;
    if (m_identity == m_bridge->tree().root()) return QAccessible::queryAccessibleInterface(qApp);
    const auto* const found = node();
    return m_bridge->interfaceOf(found ? found->parent : m_parent);
}

QAccessibleInterface* seat::AccessibleNode::child(int index) const {
    const auto* const found = node();
    if (!found || index < 0 || static_cast<std::size_t>(index) >= found->children.size()) return nullptr;
    return m_bridge->interfaceOf(found->children[static_cast<std::size_t>(index)]);
}

int seat::AccessibleNode::childCount() const {
    const auto* const found = node();
    return found ? static_cast<int>(found->children.size()) : 0;
}

int seat::AccessibleNode::indexOfChild(const QAccessibleInterface* child) const {
    const auto* const other = dynamic_cast<const AccessibleNode*>(child);
    const auto* const found = node();
    if (!other || !found) return -1;
    const auto at = std::find(found->children.begin(), found->children.end(), other->m_identity);
    return at == found->children.end() ? -1 : static_cast<int>(at - found->children.begin());
}

QAccessibleInterface* seat::AccessibleNode::childAt(int x, int y) const {
    if (!node()) return nullptr;
    auto& tree = m_bridge->tree();
    // The innermost one there, if it is in here.
    const auto innermost = tree.nodeAt(m_bridge->fromScreen({x, y}));
    for (const auto* at = tree.node(innermost); at && at->identity != m_identity; at = tree.node(at->parent))
        if (at->parent == m_identity) return m_bridge->interfaceOf(innermost);
    return nullptr;
}

QAccessibleInterface* seat::AccessibleNode::focusChild() const {
    return node() ? m_bridge->interfaceOf(m_bridge->tree().focusedNode()) : nullptr;
}

// The bus has no text beside a number for a value, so the text comes as the description, before the hint.
QString seat::AccessibleNode::text(QAccessible::Text kind) const {
    const auto* const found = node();
    if (!found) return {};
    switch (kind) {
    case QAccessible::Name:
        return nameOf(*found);
    case QAccessible::Value:
        return QString::fromStdString(found->value);
    case QAccessible::Description: {
        const bool hasBoth = !found->value.empty() && !found->description.empty();
        return QString::fromStdString(found->value + (hasBoth ? ". " : "") + found->description);
    }
    default:
        return {};
    }
}

QString seat::AccessibleNode::nameOf(const AccessibilityNode& node) const {
    // A list on a screen without a title has no other name either.
    const bool isCalledAsWindow = node.role == Role::Window || node.role == Role::List;
    return isCalledAsWindow && node.name.empty() ? m_bridge->window().title() : QString::fromStdString(node.name);
}

QRect seat::AccessibleNode::rect() const {
    const auto* const found = node();
    return found ? m_bridge->onScreen(found->extent) : QRect();
}

QAccessible::Role seat::AccessibleNode::role() const {
    const auto* const found = node();
    return found ? toolkitRole(found->role) : QAccessible::NoRole;
}

QAccessible::State seat::AccessibleNode::state() const {
    QAccessible::State state;
    const auto* const found = node();
    if (!found) {
        state.invalid = true;
        return state;
    }
    const bool windowIsActive = m_bridge->window().isActive();
    state.disabled = !found->isEnabled;
    state.focusable = found->isFocusable;
    state.focused = found->isFocused && windowIsActive;
    state.selectable = found->role == Role::ListItem;
    state.selected = found->isSelected;
    state.offscreen = !found->isOnScreen;
    state.modal = found->isModal;
    state.busy = found->isBusy;
    state.readOnly = found->role == Role::StaticText || found->role == Role::Heading;
    if (found->isOn) {
        state.checkable = true;
        state.checked = *found->isOn;
    }
    if (found->role == Role::Window) {
        state.active = windowIsActive;
        state.movable = true;
        state.sizeable = true;
    }
    return state;
}

// The toolkit has no refusal for an action on offer, so that what would do nothing is not on offer.
QStringList seat::AccessibleNode::actionNames() const {
    const auto* const found = node();
    return found && m_bridge->tree().canAct(m_identity) ? possibleActions(*found) : QStringList();
}

void seat::AccessibleNode::doAction(const QString& name) {
    if (!m_bridge) return;
    auto& tree = m_bridge->freshTree();
    using Direction = UIAccessibilityDirection;
    if (name == pressAction() || name == toggleAction())
        tree.press(m_identity);
    else if (name == setFocusAction())
        tree.focus(m_identity);
    else if (name == increaseAction())
        tree.step(m_identity, Direction::Up, UIAccessibilityStep::Small);
    else if (name == decreaseAction())
        tree.step(m_identity, Direction::Down, UIAccessibilityStep::Small);
    else
        for (const auto& action : canvasActions)
            if (name == QLatin1String(action.name)) tree.step(m_identity, action.direction, action.step);
}

QVariant seat::AccessibleNode::currentValue() const {
    const auto* const found = node();
    return found && found->range ? found->range->current : QVariant();
}

void seat::AccessibleNode::setCurrentValue(const QVariant& value) {
    if (m_bridge) m_bridge->freshTree().setValue(m_identity, value.toDouble());
}

QVariant seat::AccessibleNode::maximumValue() const {
    const auto* const found = node();
    return found && found->range ? found->range->maximum : QVariant();
}

QVariant seat::AccessibleNode::minimumValue() const {
    const auto* const found = node();
    return found && found->range ? found->range->minimum : QVariant();
}

QVariant seat::AccessibleNode::minimumStepSize() const {
    const auto* const found = node();
    return found && found->range ? found->range->step : QVariant();
}
