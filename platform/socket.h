#pragma once

#include "platform/foundation/time.h"

#include <cstddef>
#include <cstdint>

// UNIX-domain stream sockets with the phone's constants and its 106-byte address record. Failure is -1, and errno says
// why; nothing here raises a signal. Descriptors are close-on-exec. Any thread; a descriptor is for one thread at a
// time.

namespace platform {

inline constexpr int AF_UNIX_FAMILY = 1;
inline constexpr int SOCK_STREAM_TYPE = 1;
inline constexpr int SOL_SOCKET_LEVEL = 0xffff;
inline constexpr int SO_RCVTIMEO_OPTION = 0x1006;
inline constexpr int MSG_WAITALL_FLAG = 0x40;

// The first two bytes are the length of what counts and the family; the path ends at its first zero.
struct sockaddr_un {
    std::uint8_t sun_len = 0;
    std::uint8_t sun_family = 0;
    char sun_path[104] = {};
};
static_assert(sizeof(sockaddr_un) == 106);
static_assert(offsetof(sockaddr_un, sun_path) == 2);

// A call that fails sets errno.
int socket(int domain, int type, int protocol);
// The path is read up to its first zero, 104 bytes at the most, and stands under the root; how long the root's own path
// is does not matter. Never waits: with nobody listening, a full backlog, or a peer that is neither our user's nor
// root's, it fails at once.
int connect(int descriptor, const sockaddr_un* address, std::size_t size);
// Bytes taken, or -1. A peer that has gone gives -1, not a signal. Never waits for a peer that does not read.
std::ptrdiff_t send(int descriptor, const void* bytes, std::size_t length, int flags);
// With MSG_WAITALL_FLAG: all `length` bytes, or what came before the end, an error or the time-out (0 or -1 when
// nothing did).
std::ptrdiff_t recv(int descriptor, void* bytes, std::size_t length, int flags);
// SOL_SOCKET_LEVEL with SO_RCVTIMEO_OPTION and a timeval; anything else fails.
int setsockopt(int descriptor, int level, int option, const void* value, std::size_t size);
// A descriptor is closed once, whatever this returns.
int close(int descriptor);

} // namespace platform
