#include "tests/benchmarks/input_latency/PadReader.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <linux/input.h>
#include <poll.h>
#include <span>
#include <system_error>
#include <unistd.h>
#include <utility>

PadReader::PadReader(const std::string& node, std::uint16_t button)
    : m_device(::open(node.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC)), m_button(button) {
    if (m_device < 0) throw std::system_error(errno, std::generic_category(), "open of \"" + node + "\"");
}

PadReader::PadReader(PadReader&& other) noexcept
    : m_device(std::exchange(other.m_device, -1)), m_button(other.m_button) {}

PadReader::~PadReader() {
    if (m_device >= 0) ::close(m_device);
}

void PadReader::forget() {
    while (read(std::chrono::milliseconds(0))) {
    }
    m_presses = m_releases = 0;
    m_dropped = false;
}

bool PadReader::read(std::chrono::milliseconds timeout) {
    ::pollfd waiting{m_device, POLLIN, 0};
    if (::poll(&waiting, 1, static_cast<int>(timeout.count())) <= 0) return false;
    std::array<::input_event, 64> events;
    const ssize_t size = ::read(m_device, events.data(), sizeof events);
    if (size <= 0) return false;
    for (const ::input_event& event : std::span(events).first(static_cast<std::size_t>(size) / sizeof events[0])) {
        if (event.type == EV_SYN && event.code == SYN_DROPPED) m_dropped = true;
        if (event.type != EV_KEY || event.code != m_button) continue;
        if (event.value == 1) ++m_presses;
        if (event.value == 0) ++m_releases;
    }
    return true;
}

bool PadReader::waitForPresses(int count, std::chrono::milliseconds timeout) {
    while (m_presses < count)
        if (!read(timeout)) return false;
    return true;
}

bool PadReader::waitForReleases(int count, std::chrono::milliseconds timeout) {
    while (m_releases < count)
        if (!read(timeout)) return false;
    return true;
}
