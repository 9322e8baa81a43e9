#pragma once

#include "services/bluetooth/Client.h"
#include "services/common/EventLoop.h"
#include "services/jvnd/Devices.h"

#include <cstdint>
#include <functional>
#include <list>
#include <optional>
#include <utility>

namespace jvnd {

// Why a controller could not be connected, as the reply says it in the place of the type.
enum class ConnectFailure : std::uint32_t {
    NoAdapter = 1, // none, or it is blocked
    UnknownDevice = 2,
    Refused = 3,
    Unreachable = 4,
    TimedOut = 5,
    NoInputDevice = 6, // the link is there, but nothing that games could open
    Busy = 7,          // another controller is being connected
};

// Brings one controller at a time to where games can play with it, through the system's Bluetooth.
class Connector {
public:
    // The page gives up after 20 s.
    static constexpr std::chrono::seconds timeout{18};

    // All outlive this object, which listens to the client and to the devices.
    Connector(services::EventLoop& loop, bluetooth::Client& client, Devices& devices);
    ~Connector();
    Connector(const Connector&) = delete;
    Connector& operator=(const Connector&) = delete;

    // nullopt in place of an address: whichever controller calls.
    using Target = std::optional<bluetooth::Address>;
    // nullopt: connected.
    using Result = std::optional<ConnectFailure>;

    // Begins, or goes on with what it is at. What comes of it is said once, to onEnded, and not before this returns;
    // false when it is busy with another one.
    [[nodiscard]] bool connect(const Target& target);
    // Gives up what it is at, without a word.
    void cancel();
    void onEnded(std::function<void(Result)> ended) { m_ended = std::move(ended); }

    bool isConnecting() const { return m_attempt.has_value(); }
    bool isConnected(const Target& target) const;
    // An attempt at it ends as refused.
    void disconnect(const Target& target);
    // Once at a time, however often it is asked.
    void bringUp();

    // Called when a controller, the adapter or the input service has come, gone or changed.
    void onChanged(std::function<void()> changed) { m_changed = std::move(changed); }

private:
    enum class Step { PowerOn, Link, InputDevice };
    struct Attempt {
        explicit Attempt(const Target& wanted) : target(wanted) {}
        Target target;
        Step step = Step::PowerOn;
        bluetooth::Client::Handle operation;
        services::EventLoop::Source timer;
        bool wasLinked = false; // since the last step began
    };

    void poweredOn(bluetooth::Error error);
    void linked(bluetooth::Error error);
    void goOn();
    bool hasInputDevice(const Target& target) const;
    void timedOut();
    void end(Result result);
    void dropLink();
    // Keeps the operation until it has ended.
    void run(const std::function<bluetooth::Client::Handle(bluetooth::Client::Completion)>& begin);
    std::vector<bluetooth::Address> linkedGamepads() const;

    services::EventLoop& m_loop;
    bluetooth::Client& m_client;
    Devices& m_devices;
    std::function<void(Result)> m_ended;
    std::function<void()> m_changed;
    std::optional<Attempt> m_attempt;
    std::list<bluetooth::Client::Handle> m_running;
    bool m_isBringingUp = false;
};

} // namespace jvnd
