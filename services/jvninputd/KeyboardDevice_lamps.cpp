#include "services/jvninputd/KeyboardDevice.h"

#include <array>
#include <fcntl.h>
#include <libevdev/libevdev.h>
#include <linux/input.h>
#include <optional>
#include <sys/ioctl.h>
#include <unistd.h>

// Lamps follow both ways: the desktop lights those of the stand-in, the keyboard has the real ones, and some programs
// light these directly. What counts is how both are now beside how they were when they were alike last, not what was
// told of them: so what comes back of our own writing finds nothing to do. A lamp that has changed on both is alike
// again.

namespace jvninputd {

namespace {

using Lamps = KeyboardDevice::Lamps;

std::optional<Lamps> lampsOf(int device) {
    std::array<unsigned char, (LED_CNT + 7) / 8> bits{};
    if (::ioctl(device, EVIOCGLED(bits.size()), bits.data()) < 0) return std::nullopt;
    Lamps lamps;
    for (std::size_t lamp = 0; lamp < LED_CNT; ++lamp) lamps.set(lamp, bits[lamp / 8] >> lamp % 8 & 1);
    return lamps;
}

// What takes lamps from one state to the other.
std::vector<Event> difference(const Lamps& from, const Lamps& to) {
    std::vector<Event> events;
    for (std::uint16_t lamp = 0; lamp < LED_CNT; ++lamp)
        if (from.test(lamp) != to.test(lamp)) events.push_back({EV_LED, lamp, to.test(lamp) ? 1 : 0});
    return events;
}

} // namespace

std::optional<KeyboardDevice::BothLamps> KeyboardDevice::lamps() const {
    if (!m_device || !m_standIn) return std::nullopt;
    const seat::Descriptor standIn(::open(m_standIn->node().c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    const auto onKeyboard = lampsOf(m_descriptor.get());
    const auto onStandIn = standIn ? lampsOf(standIn.get()) : std::nullopt;
    if (!onKeyboard || !onStandIn) return std::nullopt; // on its way out
    return BothLamps{*onKeyboard, *onStandIn};
}

void KeyboardDevice::setLamps(const BothLamps& from, const Lamps& to) {
    m_lamps = to;
    if (const auto events = difference(from.onStandIn, to); !events.empty()) m_standIn->write(events);
    for (const Event lamp : difference(from.onKeyboard, to))
        if (::libevdev_has_event_code(m_device.get(), EV_LED, lamp.code))
            ::libevdev_kernel_set_led_value(m_device.get(), lamp.code,
                                            lamp.value != 0 ? LIBEVDEV_LED_ON : LIBEVDEV_LED_OFF);
}

void KeyboardDevice::beginLamps() {
    if (const auto both = lamps()) setLamps(*both, both->onKeyboard);
}

void KeyboardDevice::followLamps() {
    const auto both = lamps();
    if (!both) return;
    const Lamps changed = (both->onKeyboard ^ m_lamps) | (both->onStandIn ^ m_lamps);
    setLamps(*both, m_lamps ^ changed);
}

// Somebody has lit the stand-in.
void KeyboardDevice::standInReadable() {
    std::array<::input_event, 16> told; // that something has changed is all that it tells
    while (::read(m_standIn->descriptor(), told.data(), sizeof told) > 0) {
    }
    followLamps();
}

} // namespace jvninputd
