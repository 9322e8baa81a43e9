#pragma once

// One line for each failure: the operation, the object, the reason. Any thread. Never key codes typed, never a whole
// Bluetooth address.
[[gnu::format(printf, 1, 2)]] void NSLog(const char* format, ...);
