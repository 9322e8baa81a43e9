#pragma once

#include "services/common/EventLoop.h"
#include "services/jvninputd/Devices.h"
#include "services/jvninputd/VirtualDevice.h"

#include "system/files/Descriptor.h"

#include <bitset>
#include <functional>
#include <memory>
#include <optional>
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

    using Lamps = std::bitset<LED_CNT>;

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
    // Hands on what the kernel has for us but lamps, while the node is open; false when the keyboard is gone.
    template <class Each> bool drain(Each each);
    KeySet heldKeys() const;
    bool grab();
    void retype(std::span<const std::uint16_t> keys);
    struct BothLamps {
        Lamps onKeyboard, onStandIn;
    };
    std::optional<BothLamps> lamps() const; // nothing while one of them is not open
    void setLamps(const BothLamps& from, const Lamps& to);
    void beginLamps(); // with those of the keyboard
    void followLamps();
    void standInReadable();

    services::EventLoop& m_loop;
    std::string m_node;
    Callbacks m_callbacks;
    seat::Descriptor m_descriptor;
    Evdev m_device;
    std::unique_ptr<VirtualDevice> m_standIn;
    services::EventLoop::Source m_readable;
    services::EventLoop::Source m_standInReadable;
    std::vector<Event> m_frame;
    Lamps m_lamps; // of both, when they were alike last
};

} // namespace jvninputd
