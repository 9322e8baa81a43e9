#include "services/jvnd/say_line.h"

#include <poll.h>
#include <unistd.h>

void jvnd::sayLine(const std::string& line) {
    ::pollfd room{STDOUT_FILENO, POLLOUT, 0};
    if (::poll(&room, 1, 0) != 1 || !(room.revents & POLLOUT)) return;
    const std::string whole = line.substr(0, 4000) + "\n"; // what a pipe with room takes in one piece
    [[maybe_unused]] const auto written = ::write(STDOUT_FILENO, whole.data(), whole.size());
}
