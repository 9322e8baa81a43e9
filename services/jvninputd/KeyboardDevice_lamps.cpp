#include "services/jvninputd/KeyboardDevice.h"

#include <libevdev/libevdev.h>
#include <linux/input.h>
#include <unistd.h>

// Lamps follow both ways: the desktop lights those of the stand-in, the keyboard has the real ones, and some programs
// light these directly.

namespace jvninputd {

// The keyboard's lamp has changed: the stand-in's shows the same.
void KeyboardDevice::lampChanged(std::uint16_t lamp, bool lit) {
    if (!m_standIn || lamp >= LED_CNT || m_standInLamps.test(lamp) == lit) return;
    m_standInLamps.set(lamp, lit);
    ++m_echoes[lamp];
    const Event event{EV_LED, lamp, lit ? 1 : 0};
    m_standIn->write({&event, 1});
}

// Somebody lights the stand-in: the keyboard's own lamps follow.
void KeyboardDevice::readStandIn() {
    ::input_event event{};
    while (::read(m_standIn->descriptor(), &event, sizeof event) == static_cast<ssize_t>(sizeof event)) {
        if (event.type != EV_LED || event.code >= LED_CNT) continue;
        m_standInLamps.set(event.code, event.value != 0);
        if (m_echoes[event.code] > 0) {
            --m_echoes[event.code]; // our own writing
            continue;
        }
        if (m_device && ::libevdev_has_event_code(m_device.get(), EV_LED, event.code))
            ::libevdev_kernel_set_led_value(m_device.get(), event.code,
                                            event.value != 0 ? LIBEVDEV_LED_ON : LIBEVDEV_LED_OFF);
    }
}

// Once both are open the keyboard's lamps count.
void KeyboardDevice::showLamps() {
    readStandIn();
    for (std::uint16_t lamp = 0; lamp < LED_CNT; ++lamp)
        if (::libevdev_has_event_code(m_device.get(), EV_LED, lamp))
            lampChanged(lamp, ::libevdev_get_event_value(m_device.get(), EV_LED, lamp) != 0);
}

} // namespace jvninputd
