#pragma once

#include <cstdint>

// System-wide notifications: a name, no payload, to every process of this user's session that listens.

inline constexpr std::uint32_t NOTIFY_STATUS_OK = 0;
inline constexpr std::uint32_t NOTIFY_STATUS_FAILED = 1000000;

// Any thread; never blocks; true delivery is not promised (without a session bus nobody hears it, and one line is
// logged). "com.quorrel.jvnprefs.changed" is heard as the signal "changed" of interface "com.quorrel.jvnprefs".
std::uint32_t notify_post(const char* name);
