#pragma once

namespace seat {

// The USB HID usage (Keyboard/Keypad page) of a key, by the kernel's number of it; 0 for keys that the page does not
// have (volume, media, ...). It names the key by its place, whatever the layout makes of it.
long hidUsageForKernelKey(unsigned kernelKey);

// The window system's scan code is the kernel's number plus 8; codes below that are no keys and give 0.
long hidUsageForScanCode(unsigned scanCode);

} // namespace seat
