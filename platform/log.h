#pragma once

// One line for each failure: the operation, the object, the reason. Any thread. Never key codes typed, never a whole
// Bluetooth address. No line feed at its end; control characters in it become spaces, and what is beyond a kilobyte is
// cut. The same line again within a minute is counted, and the count is said with its next writing.
[[gnu::format(printf, 1, 2)]] void NSLog(const char* format, ...);
