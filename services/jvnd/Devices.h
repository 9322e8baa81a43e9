#pragma once

#include "services/bluetooth/Address.h"
#include "services/daemon_status/Status.h"
#include "services/input_protocol/messages.h"

#include <functional>
#include <optional>
#include <vector>

namespace jvnd {

// The input devices: what keyboards and lights are told, and which controllers games can open. One thread; nothing
// waits.
class Devices {
public:
    virtual ~Devices() = default;

    // Called, with nothing else under way, when a controller's input device has come or gone, or nobody can say any
    // more, and when keyboards() has another answer.
    void onChanged(std::function<void()> changed) { m_changed = std::move(changed); }

    // While nobody wants them nothing is started for them.
    virtual void setWanted(bool wanted) = 0;
    // What is to hold from now on; a device that comes later, and a service that was away, get it too.
    virtual void setKeyboard(const input::Settings& settings) = 0;
    virtual void setLight(const input::Light& light) = 0;

    // Those that are there over Bluetooth; nullopt while nobody can say.
    virtual std::optional<std::vector<bluetooth::Address>> controllers() const = 0;

    // Whether keyboards can play: what jvninputd has said last. An empty answer is none yet, or that nobody asks.
    struct Keyboards {
        daemon_status::InputService service = daemon_status::InputService::unknown;
        input::Readiness readiness = input::Readiness::ungoverned;
        std::uint8_t count = 0;
        friend bool operator==(const Keyboards&, const Keyboards&) = default;
    };
    virtual Keyboards keyboards() const { return {}; }

protected:
    void tellChanged() const {
        if (m_changed) m_changed();
    }

private:
    std::function<void()> m_changed;
};

} // namespace jvnd
