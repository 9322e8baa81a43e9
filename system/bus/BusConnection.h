#pragma once

#include "system/bus/EventSet.h"
#include "system/files/Descriptor.h"

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

struct DBusConnection;
struct DBusMessage;
struct DBusPendingCall;
struct DBusTimeout;
struct DBusWatch;

namespace seat {

// One connection to the bus, from the first attempt to its loss, on the main run loop. Nothing waits: the socket is
// connected on a worker, everything else goes on when the descriptor is ready.
class BusConnection {
public:
    class Owner {
    public:
        virtual ~Owner() = default;
        // The bus has given us our unique name.
        virtual void busIsReady() = 0;
        // The attempt failed, or the connection is gone; it has been closed.
        virtual void busIsGone(const std::string& reason) = 0;
        // The bus took the connection some time ago and has not said hello yet; it may still.
        virtual void busIsSilent() = 0;
        virtual bool handleMessage(DBusMessage& message) = 0;
    };

    BusConnection(EventSet& events, Owner& owner);
    ~BusConnection();
    BusConnection(const BusConnection&) = delete;
    BusConnection& operator=(const BusConnection&) = delete;

    void open(const std::string& address);
    // Says nothing to the owner. What was sent and not yet written is lost.
    void close();

    bool isClosed() const { return m_state == State::Closed; }
    bool isReady() const { return m_state == State::Ready; }
    // nullptr unless ready.
    DBusConnection* connection() const { return isReady() ? m_connection : nullptr; }
    const std::string& uniqueName() const { return m_uniqueName; }
    // How long the connection has been ready.
    std::chrono::milliseconds age() const;

private:
    enum class State { Closed, Opening, Greeting, Ready };
    // The watches of one descriptor: an epoll set takes a descriptor only once.
    struct Watched {
        std::vector<DBusWatch*> watches;
        EventSet::Token token = 0;
    };
    struct Callbacks;

    void adopt(DBusConnection* connection);
    void greet();
    void greeted(DBusMessage* reply);
    void fail(const std::string& reason);
    void updateWatched(int descriptor);
    void descriptorReady(int descriptor, std::uint32_t events);
    void dispatchSome();
    void setDispatchWaiting(bool waiting);
    void closeIfLost();

    EventSet& m_events;
    Owner& m_owner;
    State m_state = State::Closed;
    std::shared_ptr<int> m_attempt; // the attempt that counts; workers hold it weakly
    DBusConnection* m_connection = nullptr;
    DBusPendingCall* m_hello = nullptr; // the bus has still to answer it
    std::string m_uniqueName;
    std::chrono::steady_clock::time_point m_readySince;
    std::map<int, Watched> m_watched;
    std::map<DBusTimeout*, EventSet::Token> m_timeouts;
    EventSet::Token m_answerTimeout = 0;
    Descriptor m_again; // readable while messages wait to be dispatched
    EventSet::Token m_againToken = 0;
    bool m_isDispatching = false;
    bool m_filters = false;   // our filter is in the connection
    std::string m_lossReason; // set when the connection is over and has still to be closed
};

} // namespace seat
