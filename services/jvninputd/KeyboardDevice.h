#pragma once

#include "services/common/EventLoop.h"
#include "services/jvninputd/Devices.h"
#include "services/jvninputd/VirtualDevice.h"

#include "system/files/Descriptor.h"

#include <array>
#include <bitset>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

struct input_event;

namespace jvninputd {

// A keyboard of the kernel's, and the one that stands in for it on the desktop while it is taken. Its node is open only
// while somebody has to know its keys.
class KeyboardDevice {
public:
    struct Callbacks {
        std::function<void(std::span<const Event>)> frame; // without its end
        std::function<void()> gone;                        // it cannot be read any more; may destroy this object
    };

    KeyboardDevice(services::EventLoop& loop, std::string node, Callbacks callbacks)
        : m_loop(loop), m_node(std::move(node)), m_callbacks(std::move(callbacks)) {}

    // The desktop needs a moment to get to know a new keyboard: it is made well before the keyboard is taken.
    void makeStandIn();
    void removeStandIn();

    // As Devices has them.
    KeySet open();
    void close();
    Devices::Taken take(KeySet& keysDown);
    void giveBack();
    void forward(std::span<const Event> events);

private:
    Evdev openDevice(seat::Descriptor& descriptor) const;
    void readEvents(std::uint32_t ready);
    // Hands on what the kernel has for us, while the node is open; false when the keyboard is gone.
    bool drain(const std::function<void(const ::input_event&)>& each);
    KeySet heldKeys() const;
    bool grab();
    void retype(std::span<const std::uint16_t> keys);
    void lampChanged(std::uint16_t lamp, bool lit);
    void readStandIn();
    void showLamps();

    services::EventLoop& m_loop;
    std::string m_node;
    Callbacks m_callbacks;
    seat::Descriptor m_descriptor;
    Evdev m_device;
    std::unique_ptr<VirtualDevice> m_standIn;
    services::EventLoop::Source m_readable;
    services::EventLoop::Source m_standInReadable;
    std::vector<Event> m_frame;
    std::bitset<LED_CNT> m_standInLamps;
    // What the kernel tells us of our own writing to the stand-in's lamps, still to come.
    std::array<unsigned, LED_CNT> m_echoes{};
};

} // namespace jvninputd
