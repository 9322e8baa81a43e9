#pragma once

#include "services/bluetooth/Device.h"
#include "services/bluetooth/Error.h"

#include <functional>
#include <memory>
#include <vector>

namespace bluetooth {

enum class AdapterState {
    Unknown, // the service has not answered yet; at most for a moment after its start or ours
    Absent,  // no service, or no adapter
    Blocked, // a switch or the system keeps it off
    Off,
    On,
};

// The system's Bluetooth, as our programs need it: its devices, and what is asked of them. The service may be absent,
// slow, restarted; adapters and devices may come and go at any moment, in the middle of an operation too. Of several
// adapters one is used: the first that is on, else the first that can be switched on.
//
// One thread, on the loop that it was made for. No function waits, and none calls back before it has returned.
class Client {
public:
    virtual ~Client() = default;

    // What the client says by itself. A callback may call anything, but may not destroy the client.
    struct Listener {
        std::function<void(AdapterState)> adapterChanged = {};
        // A device has appeared, or something of it is different now: it has connected by itself, for one.
        std::function<void(const Device&)> deviceChanged = {};
        // The service has it no more: removed, forgotten after a search, or gone with its adapter or the service.
        std::function<void(const Address&)> deviceRemoved = {};
        // The service has begun to search; what is heard is told from now on.
        std::function<void()> searchBegan = {};
    };
    // Replaces the listener before it; what there is already is not told again, but asked for below.
    virtual void setListener(Listener listener) = 0;

    virtual AdapterState adapterState() const = 0;
    // All that are known now, in no particular order; one for each address.
    virtual std::vector<Device> devices() const = 0;
    virtual std::optional<Device> device(const Address& address) const = 0;

    // An operation under way; destroying it cancels it: its completion is not called any more, and what it has begun at
    // the service is called off (a search stopped, a pairing cancelled, a link that was being made given up). One that
    // has ended may be kept or destroyed. No operation outlives its client.
    class Operation {
    public:
        virtual ~Operation() = default;
    };
    using Handle = std::unique_ptr<Operation>;
    // Called once, when the operation has ended. It may destroy the operation and begin others, but may not destroy the
    // client.
    using Completion = std::function<void(Error)>;

    // Switches the adapter on, starting the service where that is needed. Ends with None when it is on (also when it
    // was), else with NoAdapter: none within a few seconds, blocked, or it stays off.
    [[nodiscard]] virtual Handle powerOn(Completion completion) = 0;

    // Searches as long as the handle lives. Devices that answer come as deviceChanged, with isHeard set. The completion
    // is called only when the search could not be begun, or when it ends by itself (the adapter or the service went).
    [[nodiscard]] virtual Handle search(Completion completion) = 0;

    // Exchanges keys, without a PIN: a device that wants one is refused, with a line in the log. None when it was
    // paired already. What it needs of an agent is there while the handle lives.
    [[nodiscard]] virtual Handle pair(const Address& address, Completion completion) = 0;
    // From now on it may connect by itself, and wake this computer where it can.
    [[nodiscard]] virtual Handle trust(const Address& address, Completion completion) = 0;
    // Connects what the device offers. None when it was connected already. The service may take 40 s; after 45 s it
    // ends with TimedOut. Callers that have less time destroy the handle.
    [[nodiscard]] virtual Handle connect(const Address& address, Completion completion) = 0;
    // None also when it was not connected, or is not known.
    [[nodiscard]] virtual Handle disconnect(const Address& address, Completion completion) = 0;
    // Forgets the device: keys, trust, everything. None also when it is not known.
    [[nodiscard]] virtual Handle remove(const Address& address, Completion completion) = 0;

    // The end of a program: `done` is called when all that was asked of the service, cancelling included, has been
    // answered. Callers bound it by a timer of their own. An empty function takes the wish back.
    virtual void whenQuiet(std::function<void()> done) = 0;
};

} // namespace bluetooth
