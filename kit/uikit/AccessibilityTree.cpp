#include "kit/uikit/AccessibilityTree.h"

#include "kit/uikit/ViewInternals.h"
#include "kit/uikit/WindowInternals.h"
#include "kit/uikit/focus_order.h"
#include "kit/uikit/reachable.h"
#include "kit/uikit/view_controller.h"
#include "kit/uikit/visible_rect.h"
#include "platform/dispatch.h"

namespace seat {

namespace {

// The texts in one of these are already its name or value.
bool speaksForItsTexts(UIAccessibilityRole role) {
    switch (role) {
    case UIAccessibilityRole::Button:
    case UIAccessibilityRole::Switch:
    case UIAccessibilityRole::Slider:
    case UIAccessibilityRole::ListItem:
    case UIAccessibilityRole::Canvas:
    case UIAccessibilityRole::ProgressIndicator:
    case UIAccessibilityRole::Heading:
        return true;
    default:
        return false;
    }
}

// Of rows those that a tap does something to; they can have the keyboard for it.
bool isPressable(const UIView& view, UIAccessibilityRole role) {
    return role == UIAccessibilityRole::Button || role == UIAccessibilityRole::Switch ||
           (role == UIAccessibilityRole::ListItem && view.canBecomeFocused());
}

// A list that has no name of its own is called as the screen that it stands on.
std::string nameOf(const UIView& view, UIAccessibilityRole role) {
    std::string name = view.accessibilityLabel();
    if (!name.empty() || role != UIAccessibilityRole::List) return name;
    for (const UIView* at = &view; at; at = at->superview().get())
        if (const auto controller = viewController(*at); controller && !controller->title().empty())
            return controller->title();
    return {};
}

using Nodes = std::map<AccessibilityIdentity, AccessibilityNode>;

void tellOfGone(AccessibilityIdentity parent, const Nodes& before, const Nodes& now,
                const AccessibilityTree::Listener& listener) {
    const auto at = before.find(parent);
    if (at == before.end()) return;
    const auto& children = at->second.children;
    for (std::size_t place = children.size(); place-- > 0;) {
        tellOfGone(children[place], before, now, listener);
        if (!now.contains(children[place]))
            listener(children[place], AccessibilityChange::Destroyed, static_cast<int>(place));
    }
}

void tellOfNew(AccessibilityIdentity parent, const Nodes& before, const Nodes& now,
               const AccessibilityTree::Listener& listener) {
    const auto at = now.find(parent);
    if (at == now.end()) return;
    int place = 0;
    for (const auto child : at->second.children) {
        if (!before.contains(child)) listener(child, AccessibilityChange::Created, place);
        tellOfNew(child, before, now, listener);
        ++place;
    }
}

} // namespace

AccessibilityTree::AccessibilityTree(const std::shared_ptr<UIWindow>& window) : m_window(window) { update(); }
AccessibilityTree::~AccessibilityTree() = default;

const AccessibilityNode* AccessibilityTree::node(AccessibilityIdentity identity) const {
    const auto at = m_nodes.find(identity);
    return at == m_nodes.end() ? nullptr : &at->second;
}

AccessibilityIdentity AccessibilityTree::identify(const std::shared_ptr<UIView>& view) {
    static AccessibilityIdentity last = 0; // identities of several windows never meet
    auto& identity = ViewInternals::state(*view).identity;
    if (identity == 0) identity = ++last;
    m_views[identity] = view;
    return identity;
}

AccessibilityNode AccessibilityTree::describe(const UIView& view, AccessibilityIdentity identity) const {
    const auto window = m_window.lock();
    AccessibilityNode node;
    node.identity = identity;
    node.role = view.accessibilityRole();
    node.name = nameOf(view, node.role);
    node.value = view.accessibilityValue();
    node.description = view.accessibilityHint();
    node.extent = view.convertRect_toView(alignmentBounds(view), nullptr);
    node.isEnabled = view.accessibilityIsEnabled();
    node.isFocusable = view.canBecomeFocused();
    node.isFocused = window && window->focusedView().get() == &view;
    node.isSelected = view.accessibilityIsSelected();
    node.isModal = view.accessibilityViewIsModal();
    node.isBusy = node.role == UIAccessibilityRole::ProgressIndicator;
    node.isOnScreen = !CGRectIsEmpty(visibleRectInWindow(view));
    node.isOn = view.accessibilityIsOn();
    node.range = view.accessibilityRange();
    node.canPress = isPressable(view, node.role) && node.isEnabled;
    return node;
}

void AccessibilityTree::add(const std::shared_ptr<UIView>& view, AccessibilityNode& parent, Nodes& nodes) {
    if (!ViewInternals::isVisible(*view) || view->accessibilityElementsHidden()) return;
    const auto role = view->accessibilityRole();
    if (role == UIAccessibilityRole::StaticText && speaksForItsTexts(parent.role)) return;
    if (role == UIAccessibilityRole::None) {
        for (const auto& subview : view->subviews()) add(subview, parent, nodes);
        return;
    }
    AccessibilityNode node = describe(*view, identify(view));
    node.parent = parent.identity;
    parent.children.push_back(node.identity);
    for (const auto& subview : view->subviews()) add(subview, node, nodes);
    nodes[node.identity] = std::move(node);
}

void AccessibilityTree::update() {
    const auto window = m_window.lock();
    Nodes nodes;
    std::erase_if(m_views, [](const auto& entry) { return entry.second.expired(); });
    if (window) {
        m_root = identify(window);
        AccessibilityNode root = describe(*window, m_root);
        root.role = UIAccessibilityRole::Window;
        const auto scope = frontScope(*window);
        if (scope == window)
            for (const auto& subview : window->subviews()) add(subview, root, nodes);
        else
            add(scope, root, nodes);
        nodes[m_root] = std::move(root);
    }
    nodes.swap(m_nodes);
    if (m_listener) tell(nodes);
    if (!m_waiting.empty()) performWaiting();
}

void AccessibilityTree::tell(const Nodes& before) const {
    const Listener listener = m_listener; // it may replace itself
    const Nodes now = m_nodes;
    tellOfGone(m_root, before, now, listener);
    tellOfNew(m_root, before, now, listener);
    for (const auto& [identity, node] : now) {
        const auto at = before.find(identity);
        const bool isNew = at == before.end();
        const AccessibilityNode& old = isNew ? node : at->second;
        const auto has = [&](AccessibilityChange change) { listener(identity, change, /*place=*/0); };
        if (node.children != old.children) has(AccessibilityChange::Children);
        if (node.name != old.name) has(AccessibilityChange::Name);
        if (node.value != old.value || node.isOn != old.isOn || node.range != old.range)
            has(AccessibilityChange::Value);
        if (node.isEnabled != old.isEnabled || node.isSelected != old.isSelected || node.isOnScreen != old.isOnScreen)
            has(AccessibilityChange::State);
        if (node.extent != old.extent) has(AccessibilityChange::Extent);
        if (node.isFocused && (isNew || !old.isFocused)) has(AccessibilityChange::Focus);
    }
}

AccessibilityIdentity AccessibilityTree::nodeAt(CGPoint point) const {
    AccessibilityIdentity found = 0;
    const AccessibilityNode* at = node(m_root);
    if (at && !CGRectContainsPoint(at->extent, point)) at = nullptr;
    while (at) {
        found = at->identity;
        const AccessibilityNode* inner = nullptr;
        for (const auto child : at->children) // the last one is in front
            if (const auto* each = node(child); each && each->isOnScreen && CGRectContainsPoint(each->extent, point))
                inner = each;
        at = inner;
    }
    return found;
}

AccessibilityIdentity AccessibilityTree::focusedNode() const {
    for (const auto& [identity, node] : m_nodes)
        if (node.isFocused) return identity;
    return 0;
}

std::optional<LabelStyle> AccessibilityTree::textStyle(AccessibilityIdentity identity) const {
    const auto at = m_views.find(identity);
    const auto view = at == m_views.end() ? nullptr : at->second.lock();
    return view ? labelStyle(*view) : std::nullopt;
}

std::shared_ptr<UIView> AccessibilityTree::enabledView(AccessibilityIdentity identity) const {
    if (!m_nodes.contains(identity)) return nullptr;
    const auto at = m_views.find(identity);
    const auto view = at == m_views.end() ? nullptr : at->second.lock();
    return view && view->accessibilityIsEnabled() ? view : nullptr;
}

bool AccessibilityTree::canAct(AccessibilityIdentity identity) const {
    const auto view = enabledView(identity);
    return view && (isReachable(*view) || isHeld(*view));
}

bool AccessibilityTree::perform(AccessibilityIdentity identity, Act act) {
    const auto view = enabledView(identity);
    if (!view) return false;
    if (isReachable(*view)) return act(*view);
    if (!isHeld(*view)) return false;
    m_waiting.emplace_back(view, std::move(act));
    return true;
}

// Whoever slid a screen in has changed the views, so that a frame comes, and with it this, once it has arrived. The
// acts have their turn on the main queue: what they change is not to be changed in the middle of a frame.
void AccessibilityTree::performWaiting() {
    std::erase_if(m_waiting, [](auto& waiting) {
        if (const auto view = waiting.first.lock(); view && isHeld(*view)) return false;
        dispatch_async(dispatch_get_main_queue(), [weak = waiting.first, act = std::move(waiting.second)] {
            if (const auto view = weak.lock(); view && view->accessibilityIsEnabled() && isReachable(*view)) act(*view);
        });
        return true;
    });
}

bool AccessibilityTree::press(AccessibilityIdentity identity) {
    return perform(identity, [](UIView& view) { return view.accessibilityActivate(); });
}

bool AccessibilityTree::step(AccessibilityIdentity identity, UIAccessibilityDirection direction,
                             UIAccessibilityStep step) {
    return perform(identity, [=](UIView& view) { return view.accessibilityStep(direction, step); });
}

bool AccessibilityTree::setValue(AccessibilityIdentity identity, double value) {
    return perform(identity, [value](UIView& view) { return view.accessibilitySetValue(value); });
}

bool AccessibilityTree::focus(AccessibilityIdentity identity) {
    return perform(identity, [](UIView& view) {
        const auto window = view.window();
        if (!window || !view.canBecomeFocused()) return false;
        WindowInternals::focusByKeyboard(*window, std::static_pointer_cast<UIView>(view.shared_from_this()));
        return true;
    });
}

bool AccessibilityTree::escape(AccessibilityIdentity identity) {
    return perform(identity, [](UIView& view) { return view.accessibilityPerformEscape(); });
}

} // namespace seat
