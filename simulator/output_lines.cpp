#include "simulator/output_lines.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <poll.h>
#include <unistd.h>

void simulator::say(const char* format, ...) {
    char line[4096]; // what a pipe that has room at all takes in one piece
    std::va_list arguments;
    va_start(arguments, format);
    const int length = std::vsnprintf(line, sizeof line - 1, format, arguments);
    va_end(arguments);
    if (length < 0) return;
    auto end = std::min(static_cast<std::size_t>(length), sizeof line - 2);
    line[end++] = '\n';
    ::pollfd room{STDOUT_FILENO, POLLOUT, 0};
    if (::poll(&room, 1, 0) != 1 || !(room.revents & POLLOUT)) return;
    [[maybe_unused]] const auto written = ::write(STDOUT_FILENO, line, end);
}
