#pragma once

#include <memory>

class UIKeyEvent;
class UITextField;
class UIWindow;

namespace seat {

// The kit's own keyboard: moves the focus, steps sliders, activates, goes back, scrolls. Leaves keys alone while a row
// of the front table waits for one.
void handleKey(UIWindow& window, const UIKeyEvent& event);

// The screen in front waits for a key press (`UIViewController::waitsForKey`), and no message stands before it.
bool frontScreenWaits(const UIWindow& window);

// The text field that has the focus, and so takes what is typed; nil when there is none, or keys go elsewhere.
std::shared_ptr<UITextField> fieldForText(const UIWindow& window);

} // namespace seat
