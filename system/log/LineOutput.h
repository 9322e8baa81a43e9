#pragma once

#include "system/files/Descriptor.h"
#include "system/files/uninterrupted.h"

#include <cstdint>
#include <cstdio>
#include <fcntl.h>
#include <poll.h>
#include <string_view>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

namespace seat {

// Standard error as the place of a log that nothing ever waits for: a line for which there is no room, because whoever
// reads there has stopped, is left out and counted, and the count stands before the next line that there is room for.
// A line goes out in one call, so that those of several processes do not mix. Takes no memory. One thread at a time.
class LineOutput {
public:
    // The line has no end of its own; `name` and a colon stand before it. Together less than two kilobytes.
    void write(std::string_view name, std::string_view line) noexcept {
        char missing[96];
        const int length = m_leftOut == 0 ? 0
                                          : std::snprintf(missing, sizeof missing,
                                                          "lines left out before this one, as nobody read them: %llu\n",
                                                          static_cast<unsigned long long>(m_leftOut));
        const bool areSome = length > 0;
        const std::string_view parts[] = {m_isCut ? "\n" : "",
                                          areSome ? name : "",
                                          areSome ? ": " : "",
                                          {missing, static_cast<std::size_t>(areSome ? length : 0)},
                                          name,
                                          ": ",
                                          line,
                                          "\n"};
        ::iovec vectors[std::size(parts)];
        std::size_t size = 0;
        for (std::size_t i = 0; i < std::size(parts); ++i) {
            vectors[i] = {const_cast<char*>(parts[i].data()), parts[i].size()}; // which is only read
            size += parts[i].size();
        }
        const ssize_t written = writeNow({.msg_name = nullptr,
                                          .msg_namelen = 0,
                                          .msg_iov = vectors,
                                          .msg_iovlen = std::size(vectors),
                                          .msg_control = nullptr,
                                          .msg_controllen = 0,
                                          .msg_flags = 0});
        if (written == static_cast<ssize_t>(size)) {
            m_leftOut = 0;
            m_isCut = false;
            return;
        }
        ++m_leftOut;
        // A terminal may take a part.
        if (written > 0) m_isCut = true;
    }

private:
    // How much was written; -1: nothing.
    static ssize_t writeNow(const ::msghdr& text) noexcept {
        constexpr int output = STDERR_FILENO;
        struct stat status {};
        if (::fstat(output, &status) != 0) return -1;
        if (S_ISSOCK(status.st_mode)) return ::sendmsg(output, &text, MSG_DONTWAIT | MSG_NOSIGNAL);
        const auto write = [&text](int descriptor) {
            return uninterrupted([&] { return ::writev(descriptor, text.msg_iov, static_cast<int>(text.msg_iovlen)); });
        };
        if (!S_ISFIFO(status.st_mode) && !S_ISCHR(status.st_mode)) return write(output);
        // Others write through the descriptor that we were given, and would be surprised if it did not wait any more.
        const Descriptor own(::open("/proc/self/fd/2", O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
        if (own) return write(own.get());
        // Another user's, or no room for a descriptor: as long as nobody else writes at this very moment it cannot
        // wait.
        ::pollfd room{output, POLLOUT, 0};
        return ::poll(&room, 1, 0) == 1 ? write(output) : -1;
    }

    std::uint64_t m_leftOut = 0;
    bool m_isCut = false; // the last line, of which a part was written
};

} // namespace seat
