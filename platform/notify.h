#pragma once

#include <cstdint>

// System-wide notifications: a name, no payload, to every process of this user's session that listens.

inline constexpr std::uint32_t NOTIFY_STATUS_OK = 0;
inline constexpr std::uint32_t NOTIFY_STATUS_FAILED = 1000000;

// Any thread; posts are delivered in order from the main run loop. On the main thread it never waits; on another it
// returns when the other processes have been sent it, so that what the caller does next comes after it for them, too,
// but after a tenth of a second at the latest. Delivery is not promised: without a session bus no other process hears
// of it, and one line is logged. A name of fewer than three parts fails. "com.quorrel.jvnprefs.changed" is heard as the
// signal "changed" of interface "com.quorrel.jvnprefs".
std::uint32_t notify_post(const char* name);
