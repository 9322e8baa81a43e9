#pragma once

#include "services/bluetooth/Client.h"
#include "services/common/EventLoop.h"

#include <functional>
#include <optional>
#include <set>

namespace jvndiscovery {

// What the page is told, in its own numbers.
enum class State {
    Searching = 0,
    Paired = 2,
    NoBluetooth = 3,
    Starting = 4,
};

// How the tool ends.
enum class Outcome { Paired, Interrupted, NoBluetooth };

// What became of an address that was to be stored.
enum class Stored {
    Yes,
    NotYet, // another program holds the preferences: to be tried again
    Failed,
};

// From "nothing is known" to "one controller is paired, trusted, connected and stored", or to an interruption that
// leaves nothing behind. Bluetooth may come and go meanwhile; it searches until it finds or is stopped.
class Discovery {
public:
    struct Surroundings {
        // Tells the page; in order, without waiting.
        std::function<void(State)> report;
        // Puts the address where the page and the daemon find it, without waiting. Failed has been logged.
        std::function<Stored(const bluetooth::Address&)> store;
        // Nothing is under way any more.
        std::function<void(Outcome)> ended;
    };

    // Begins at once. Loop and client must outlive it.
    Discovery(services::EventLoop& loop, bluetooth::Client& client, Surroundings surroundings);
    ~Discovery();
    Discovery(const Discovery&) = delete;
    Discovery& operator=(const Discovery&) = delete;

    // Gives up: what has been begun is called off, half a pairing removed. `ended` follows within 300 ms, whatever the
    // Bluetooth service does. Once it has been stored, a pairing stays.
    void interrupt();

private:
    using Address = bluetooth::Address;
    using Device = bluetooth::Device;
    using Error = bluetooth::Error;

    void bringUp();
    void broughtUp(Error error);
    void comeBack();
    void endWithoutBluetooth();
    void search();
    void searchBegan();
    void consider(const Device& device);
    void considerAll();
    void leaveAlone(const Address& address);
    void pair(const Address& address);
    void trust();
    void connect();
    void connected(Error error);
    void storeWithin(std::chrono::milliseconds time);
    void giveUp(Error error);
    void end(Outcome outcome);
    void over();

    services::EventLoop& m_loop;
    bluetooth::Client& m_client;
    Surroundings m_surroundings;
    bool m_wasUp = false;                   // Bluetooth has been on since the start
    std::optional<services::Moment> m_lost; // since when it does not search
    std::optional<Address> m_candidate;     // what is being paired
    std::set<Address> m_failed;             // left alone for a while
    bluetooth::Client::Handle m_bringUp;
    bluetooth::Client::Handle m_search;
    bluetooth::Client::Handle m_pairing; // kept to the end: with it goes the agent
    bluetooth::Client::Handle m_operation;
    bluetooth::Client::Handle m_removal;
    services::EventLoop::Source m_timer;
    std::optional<Outcome> m_outcome;
    bool m_isOver = false;
};

} // namespace jvndiscovery
