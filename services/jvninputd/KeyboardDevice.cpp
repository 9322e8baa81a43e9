#include "services/jvninputd/KeyboardDevice.h"

#include "services/common/log.h"
#include "services/jvninputd/moment.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <libevdev/libevdev.h>
#include <linux/input.h>
#include <sys/epoll.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace jvninputd {

namespace {

// A frame never ends on a device that does not say so; its events are handed on all the same.
constexpr std::size_t longestFrame = 256;

} // namespace

Evdev KeyboardDevice::openDevice(seat::Descriptor& descriptor) const {
    descriptor.reset(::open(m_node.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
    ::libevdev* device = nullptr;
    const int result = descriptor ? ::libevdev_new_from_fd(descriptor.get(), &device) : -errno;
    if (result < 0 && result != -ENODEV) services::log("opening %s: %s", m_node.c_str(), std::strerror(-result));
    if (result < 0) {
        descriptor.reset();
        return nullptr;
    }
    ::libevdev_set_clock_id(device, CLOCK_MONOTONIC); // the loop's
    return Evdev(device);
}

void KeyboardDevice::makeStandIn() {
    if (m_standIn) return;
    seat::Descriptor descriptor;
    const Evdev device = openDevice(descriptor);
    if (!device) return;
    m_standIn = VirtualDevice::create(*describeStandIn(*device));
}

void KeyboardDevice::removeStandIn() {
    m_standInReadable.reset();
    m_standIn.reset();
}

KeySet KeyboardDevice::open() {
    m_device = openDevice(m_descriptor);
    if (!m_device) return {};
    m_frame.clear();
    m_readable = m_loop.watchUrgently(m_descriptor.get(), EPOLLIN, [this](std::uint32_t ready) { readEvents(ready); });
    if (m_standIn) {
        m_standInReadable =
            m_loop.watch(m_standIn->descriptor(), EPOLLIN, [this](std::uint32_t) { standInReadable(); });
        beginLamps();
    }
    return heldKeys();
}

void KeyboardDevice::close() {
    m_readable.reset();
    m_standInReadable.reset();
    m_device.reset();
    m_descriptor.reset();
}

// The kernel's own word; what is still to be read is part of it.
KeySet KeyboardDevice::heldKeys() const {
    std::array<unsigned char, (KEY_CNT + 7) / 8> bits{};
    if (::ioctl(m_descriptor.get(), EVIOCGKEY(bits.size()), bits.data()) < 0) return {};
    KeySet held;
    for (unsigned key = 0; key < KEY_CNT; ++key) held.set(key, bits[key / 8] >> key % 8 & 1);
    return held;
}

template <class Each> bool KeyboardDevice::drain(Each each) {
    // "Blocking" spares a read for each event: the node is read only when all that was read before is used up.
    constexpr unsigned normal = LIBEVDEV_READ_FLAG_NORMAL | LIBEVDEV_READ_FLAG_BLOCKING;
    unsigned how = normal;
    int result = -EAGAIN;
    bool lampsChanged = false;
    while (m_device) { // what is handed on may close it
        ::input_event event{};
        result = ::libevdev_next_event(m_device.get(), how, &event);
        if (result == -EAGAIN && how != normal) {
            how = normal;
            continue;
        }
        if (result == LIBEVDEV_READ_STATUS_SYNC && how == normal) {
            // The kernel has dropped events. What has changed meanwhile follows, until there is no more of it.
            how = LIBEVDEV_READ_FLAG_SYNC;
            continue;
        }
        if (result != LIBEVDEV_READ_STATUS_SUCCESS && result != LIBEVDEV_READ_STATUS_SYNC) break;
        if (event.type == EV_LED)
            lampsChanged = true;
        else
            each(event);
    }
    if (lampsChanged) followLamps();
    return !m_device || result == -EAGAIN || result == -EINTR;
}

void KeyboardDevice::readEvents(std::uint32_t ready) {
    const bool there = drain([this](const ::input_event& event) {
        if (event.type != EV_SYN) m_frame.push_back({event.type, event.code, event.value});
        const bool ends = event.type == EV_SYN && event.code == SYN_REPORT;
        if (m_frame.empty() || (!ends && m_frame.size() < longestFrame)) return;
        m_callbacks.frame(m_frame);
        m_frame.clear();
    });
    if (there && !(ready & (EPOLLHUP | EPOLLERR))) return;
    // Until it is taken away the node would be ready for ever.
    m_readable.reset();
    const auto gone = m_callbacks.gone;
    gone();
}

Devices::Taken KeyboardDevice::take(KeySet& keysDown) {
    keysDown.reset();
    if (!m_device || !m_standIn) return Devices::Taken::no;
    // A key that moves at the same moment makes it necessary to begin again; nobody presses keys that fast for long.
    constexpr int attempts = 4;
    for (int attempt = 0; attempt < attempts && keysDown.none(); ++attempt) {
        if (grab()) return Devices::Taken::yes;
        keysDown = heldKeys();
    }
    return Devices::Taken::no;
}

// Held keys are looked for after grabbing, as one may go down between a look and the grab. False when it could not be
// done without anybody missing half a press; then the keyboard is everybody's.
bool KeyboardDevice::grab() {
    drain([](const ::input_event&) {});
    const Moment before = m_loop.now();
    if (const int result = ::libevdev_grab(m_device.get(), LIBEVDEV_GRAB); result < 0) {
        services::log("taking %s: %s", m_node.c_str(), std::strerror(-result));
        return false;
    }
    const Moment after = m_loop.now();

    bool keysMoved = false;
    KeySet seenPressed;
    std::vector<std::uint16_t> halfSeen; // of which the desktop may have got the press and not the release
    drain([&](const ::input_event& event) {
        if (event.type != EV_KEY || event.code >= KEY_CNT) return;
        keysMoved = true;
        const Moment time =
            std::chrono::seconds(event.input_event_sec) + std::chrono::microseconds(event.input_event_usec);
        if (event.value == 1) seenPressed.set(event.code, time <= after);
        if (event.value == 0 && time >= before && seenPressed.test(event.code)) halfSeen.push_back(event.code);
    });
    if (!keysMoved && heldKeys().none()) return true;

    giveBack();
    retype(halfSeen);
    return false;
}

// The desktop hears of the release only if the keyboard itself has the key down.
void KeyboardDevice::retype(std::span<const std::uint16_t> keys) {
    for (const std::uint16_t key : keys)
        for (const int value : {1, 0}) {
            std::array<::input_event, 2> frame{};
            frame[0].type = EV_KEY;
            frame[0].code = key;
            frame[0].value = value;
            if (::write(m_descriptor.get(), frame.data(), sizeof frame) < 0)
                services::log("writing to %s: %s", m_node.c_str(), std::strerror(errno));
        }
}

void KeyboardDevice::giveBack() {
    if (m_device) ::libevdev_grab(m_device.get(), LIBEVDEV_UNGRAB);
}

void KeyboardDevice::forward(std::span<const Event> events) {
    if (m_standIn) m_standIn->write(events);
}

} // namespace jvninputd
