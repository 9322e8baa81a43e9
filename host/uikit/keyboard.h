#pragma once

class UIKeyEvent;
class UIWindow;

namespace host {

// The kit's own keyboard: moves the focus, steps sliders, activates, goes back, scrolls. Leaves keys alone while a row
// of the front table waits for one.
void handleKey(UIWindow& window, const UIKeyEvent& event);

} // namespace host
