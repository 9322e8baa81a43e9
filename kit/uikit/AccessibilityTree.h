#pragma once

#include "kit/uikit/label_style.h"
#include "platform/quartz/CGGeometry.h"
#include "platform/uikit/UIAccessibility.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class UIView;
class UIWindow;

namespace seat {

using AccessibilityIdentity = std::uint64_t; // of a view, for as long as it lives; 0 is none

// What assistive technology knows of one view.
struct AccessibilityNode {
    AccessibilityIdentity identity = 0;
    AccessibilityIdentity parent = 0; // 0 at the root
    std::vector<AccessibilityIdentity> children;
    UIAccessibilityRole role = UIAccessibilityRole::None;
    std::string name;
    std::string value;
    std::string description;
    CGRect extent; // in the window's points
    bool isEnabled = true;
    bool isFocusable = false;
    bool isFocused = false;
    bool isSelected = false;
    bool isModal = false;
    bool isBusy = false;    // something is going on that takes its time
    bool isOnScreen = true; // some of it can be seen
    std::optional<bool> isOn;
    std::optional<UIAccessibilityRange> range;
    bool canPress = false; // as far as its kind goes; see canAct()

    friend bool operator==(const AccessibilityNode&, const AccessibilityNode&) = default;
};

enum class AccessibilityChange {
    Created,
    Destroyed,
    Children,
    Name,
    Value, // also on or off, and the range
    State, // enabled, selected, on screen
    Extent,
    Focus, // this node has it now
};

// The nodes of a window: one for each visible view with a role, and the window itself as the root. While a modal view
// is in front, it alone is below the root. Main thread only.
class AccessibilityTree {
public:
    explicit AccessibilityTree(const std::shared_ptr<UIWindow>& window);
    ~AccessibilityTree();

    AccessibilityIdentity root() const { return m_root; }
    // As of the last update(); nullptr when there is none of that identity.
    const AccessibilityNode* node(AccessibilityIdentity identity) const;
    const std::map<AccessibilityIdentity, AccessibilityNode>& nodes() const { return m_nodes; }
    // The innermost node at a place of the window; 0 outside.
    AccessibilityIdentity nodeAt(CGPoint point) const;
    AccessibilityIdentity focusedNode() const;
    // How a node's text is drawn just now; nothing where it shows none.
    std::optional<LabelStyle> textStyle(AccessibilityIdentity identity) const;

    // Reads the views anew and tells of what has changed. First of nodes that have gone, from the last to the first,
    // then of new ones from the first to the last: whoever follows has each at its place as it comes and goes.
    void update();
    // `place`: of a node that has come or gone, among its parent's children.
    using Listener = std::function<void(AccessibilityIdentity, AccessibilityChange, int place)>;
    void setListener(Listener listener) { m_listener = std::move(listener); }

    // Whether what assistive technology does with a node comes to anything: not while its view is gone, covered or
    // disabled.
    bool canAct(AccessibilityIdentity identity) const;
    // What assistive technology may do. False when the node cannot act or has no such action. They take effect at once,
    // and the nodes follow with the next update(); but on a screen that is still sliding in they wait for its arrival.
    bool press(AccessibilityIdentity identity);
    bool step(AccessibilityIdentity identity, UIAccessibilityDirection direction, UIAccessibilityStep step);
    bool setValue(AccessibilityIdentity identity, double value);
    bool focus(AccessibilityIdentity identity);
    bool escape(AccessibilityIdentity identity);

private:
    using Nodes = std::map<AccessibilityIdentity, AccessibilityNode>;
    AccessibilityIdentity identify(const std::shared_ptr<UIView>& view);
    void add(const std::shared_ptr<UIView>& view, AccessibilityNode& parent, Nodes& nodes);
    AccessibilityNode describe(const UIView& view, AccessibilityIdentity identity) const;
    // The view of an enabled node; nil when there is none.
    std::shared_ptr<UIView> enabledView(AccessibilityIdentity identity) const;
    using Act = std::function<bool(UIView& view)>;
    bool perform(AccessibilityIdentity identity, Act act);
    void performWaiting();
    void tell(const Nodes& before) const;

    std::weak_ptr<UIWindow> m_window;
    AccessibilityIdentity m_root = 0;
    Nodes m_nodes;
    std::map<AccessibilityIdentity, std::weak_ptr<UIView>> m_views;
    std::vector<std::pair<std::weak_ptr<UIView>, Act>> m_waiting; // for their screens to arrive
    Listener m_listener;
};

} // namespace seat
