#pragma once

#include <memory>
#include <vector>

class UIView;
class UIWindow;

namespace seat {

// The view that keys and assistive technology are confined to: the front modal view, else the window.
std::shared_ptr<UIView> frontScope(const UIWindow& window);

// The views that can be focused, in reading order: from the top, in a line from the left. What is inside a focusable
// view belongs to it.
std::vector<std::shared_ptr<UIView>> focusableViews(const UIView& scope);

// What has the focus, as long as keys may reach it: nil while it is covered.
std::shared_ptr<UIView> reachableFocus(const UIWindow& window);

// The neighbour of the focused view, or where none has the focus the first (last) view. A container that knows more
// than what is on screen is asked first. nil when there is no other.
std::shared_ptr<UIView> nextFocus(const UIWindow& window, bool forward);

} // namespace seat
