#pragma once

#include "services/common/EventLoop.h"
#include "services/jvninputd/Devices.h"
#include "services/jvninputd/KeyboardDevice.h"
#include "services/jvninputd/ListenerWatch.h"
#include "services/jvninputd/VirtualDevice.h"

#include <functional>
#include <map>
#include <memory>
#include <string>

namespace jvninputd {

// The kernel's keyboards, and the pad.
class KernelDevices final : public Devices {
public:
    struct Callbacks {
        std::function<void(KeyboardId, std::span<const Event>)> frame;
        std::function<void(KeyboardId)> gone; // whoever is told removes it
        std::function<void()> listening;      // a program has begun, or ended, to listen to the pad
    };
    KernelDevices(services::EventLoop& loop, Callbacks callbacks);

    void add(KeyboardId keyboard, const std::string& node);
    void remove(KeyboardId keyboard);

    // Whether some program has this pad open, as a game has. Nobody has a new one.
    bool hasListener() const { return m_listeners && m_listeners->listening(); }

    KeySet open(KeyboardId keyboard) override;
    void close(KeyboardId keyboard) override;
    Taken take(KeyboardId keyboard, KeySet& keysDown) override;
    void giveBack(KeyboardId keyboard) override;
    void forward(KeyboardId keyboard, std::span<const Event> events) override;
    bool makePad(input::Profile profile) override;
    void emit(std::span<const Event> events) override;

private:
    KeyboardDevice* find(KeyboardId keyboard);

    services::EventLoop& m_loop;
    Callbacks m_callbacks;
    std::map<KeyboardId, std::unique_ptr<KeyboardDevice>> m_keyboards;
    std::unique_ptr<ListenerWatch> m_listeners;
    std::unique_ptr<VirtualDevice> m_pad;
};

} // namespace jvninputd
