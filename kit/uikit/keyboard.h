#pragma once

#include <memory>

class UIKeyEvent;
class UIWindow;

namespace seat {

// The kit's own keyboard, by the keys' symbols: moves the focus, steps sliders, activates, goes back, scrolls. Leaves
// keys alone while a row of the front table waits for one.
void handleKey(UIWindow& window, const UIKeyEvent& event);

// What Alt+Left and the mouse's button for it do: the screen in front goes back to the one below it, or away, wherever
// the focus is. Nothing while a message stands before it.
void goBack(UIWindow& window);

// The screen in front waits for a key press (`UIViewController::waitsForKey`), and no message stands before it.
bool frontScreenWaits(const UIWindow& window);

} // namespace seat
