#include "tests/machine/support/EventReader.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "tests/machine/support/device_nodes.h"

namespace machine {
namespace {

using Clock = std::chrono::steady_clock;

std::chrono::milliseconds left(Clock::time_point deadline) {
    return std::max(std::chrono::milliseconds(0),
                    std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()));
}

using KeyBits = std::array<unsigned char, KEY_CNT / 8 + 1>;

KeyBits keyBits(int device) {
    KeyBits bits{};
    if (::ioctl(device, EVIOCGKEY(bits.size()), bits.data()) < 0) bits.fill(0);
    return bits;
}

} // namespace

EventReader::EventReader(const std::string& node) : m_device(::open(node.c_str(), O_RDWR | O_CLOEXEC | O_NONBLOCK)) {
    if (m_device < 0 && errno == EACCES) m_device = ::open(node.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (m_device < 0) throw std::system_error(errno, std::generic_category(), "open of \"" + node + "\"");
}

EventReader::EventReader(EventReader&& other) noexcept : m_device(std::exchange(other.m_device, -1)) {}

EventReader::~EventReader() {
    if (m_device >= 0) ::close(m_device);
}

EventReader EventReader::ofDevice(const std::string& name, std::chrono::milliseconds timeout) {
    return EventReader(waitForEventNode(name, timeout));
}

std::optional<input_event> EventReader::next(std::chrono::milliseconds timeout) {
    const auto deadline = Clock::now() + timeout;
    for (;;) {
        input_event event{};
        const auto count = ::read(m_device, &event, sizeof event);
        if (count == static_cast<ssize_t>(sizeof event)) {
            if (event.type == EV_SYN && event.code == SYN_REPORT) continue;
            return event;
        }
        if (count >= 0 || (errno != EAGAIN && errno != EINTR)) return std::nullopt;
        pollfd waiting{m_device, POLLIN, 0};
        if (::poll(&waiting, 1, static_cast<int>(left(deadline).count())) == 0) return std::nullopt;
    }
}

bool EventReader::waitFor(uint16_t type, uint16_t code, int32_t value, std::chrono::milliseconds timeout) {
    const auto deadline = Clock::now() + timeout;
    while (const auto event = next(left(deadline)))
        if (event->type == type && event->code == code && event->value == value) return true;
    return false;
}

std::string EventReader::nextText(std::chrono::milliseconds timeout) {
    const auto event = next(timeout);
    if (!event) return "nothing";
    std::string type = std::to_string(event->type);
    if (event->type == EV_SYN) type = "EV_SYN";
    if (event->type == EV_KEY) type = "EV_KEY";
    if (event->type == EV_REL) type = "EV_REL";
    if (event->type == EV_ABS) type = "EV_ABS";
    if (event->type == EV_MSC) type = "EV_MSC";
    if (event->type == EV_LED) type = "EV_LED";
    return type + " " + std::to_string(event->code) + " " + std::to_string(event->value);
}

bool EventReader::gone() const {
    input_id id{};
    return ::ioctl(m_device, EVIOCGID, &id) < 0;
}

bool EventReader::isDown(uint16_t key) const { return (keyBits(m_device)[key / 8U] >> (key % 8U) & 1U) != 0; }

int EventReader::keysDown() const {
    int count = 0;
    for (const auto byte : keyBits(m_device)) count += std::popcount(byte);
    return count;
}

int32_t EventReader::axis(uint16_t code) const {
    input_absinfo info{};
    if (::ioctl(m_device, EVIOCGABS(code), &info) < 0)
        throw std::system_error(errno, std::generic_category(), "an axis of an input device");
    return info.value;
}

bool EventReader::isLit(uint16_t lamp) const {
    std::array<unsigned char, LED_CNT / 8 + 1> bits{};
    if (::ioctl(m_device, EVIOCGLED(bits.size()), bits.data()) < 0)
        throw std::system_error(errno, std::generic_category(), "the lamps of an input device");
    return (bits[lamp / 8U] >> (lamp % 8U) & 1U) != 0;
}

bool EventReader::grab() { return ::ioctl(m_device, EVIOCGRAB, 1) == 0; }
void EventReader::release() { ::ioctl(m_device, EVIOCGRAB, 0); }

bool EventReader::grabbedByOthers() {
    if (!grab()) return errno == EBUSY;
    release();
    return false;
}

} // namespace machine
