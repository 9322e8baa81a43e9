#pragma once

namespace seat {

class BusRelay;

// What the toolkit calls its connection to the accessibility bus.
inline constexpr char toolkitsAccessibilityConnection[] = "a11y";

// Under X the toolkit reads the address of the accessibility bus from the screen and connects to it past the relay,
// with calls that hold up the window. It takes a connection of the same name that is there already: this makes one,
// through the relay, where the screen has an address. It is also left thinking that accessibility is on, without
// telling its own bridge, unless the session bus has said so before: a late one is answered for. Between the toolkit's
// start and its event loop, main thread.
void relayAccessibilityBusOfScreen(BusRelay& relay);

} // namespace seat
