#pragma once

#include "kit/runtime/LineLimit.h"
#include "system/bus/BusConnection.h"
#include "system/bus/BusSenders.h"
#include "system/bus/BusWatcher.h"
#include "system/bus/EventSet.h"
#include "system/bus/SessionBus.h"

#include <deque>
#include <map>

namespace seat {

class SessionBus::Implementation final : private BusConnection::Owner {
public:
    Implementation();
    ~Implementation() override;

    bool isConnected() const { return m_connection.isReady(); }
    bool isFlushed() const;

    void addName(const std::string& name, std::function<void(NameState)> changed);
    void removeName(const std::string& name);
    Token addMethods(const std::string& path, const std::string& interface,
                     std::function<CallResult(const BusCall&)> called);
    Token addSignal(const std::string& interface, const std::string& member,
                    std::function<void(const BusSignal&)> heard, const std::string& sender);
    void remove(Token token);
    void emitSignal(const BusSignal& signal);
    void call(const BusMethod& method, const std::string& signature, const std::vector<id>& arguments,
              std::chrono::milliseconds timeout, std::function<void(const Reply&)> replied);

private:
    struct Name {
        std::function<void(NameState)> changed;
        NameState state = NameState::Lost;
    };
    struct Methods {
        std::string path;
        std::string interface;
        std::shared_ptr<std::function<CallResult(const BusCall&)>> called;
    };
    struct Listener {
        std::string interface;
        std::string member;
        std::shared_ptr<std::function<void(const BusSignal&)>> heard;
        std::string sender;
    };
    // What is to be sent once the bus is there.
    struct Waiting {
        DBusMessage* message;
        std::chrono::milliseconds timeout;
        std::function<void(const Reply&)> replied;
    };

    struct PendingCall;

    void busIsReady() override;
    void busIsGone(const std::string& reason) override;
    void busIsSilent() override;
    bool handleMessage(DBusMessage& message) override;

    void connectIfNeeded();
    void connectNow();
    bool isWanted() const { return !m_names.empty() || !m_listeners.empty() || !m_waiting.empty(); }
    void logAbsence(const std::string& reason);

    // Takes over the message; `replied` may be null.
    void send(DBusMessage* message, std::chrono::milliseconds timeout, std::function<void(const Reply&)> replied);
    void sendNow(const Waiting& waiting);
    void dropWaiting();
    void callAnswered(Token call, DBusMessage* reply);
    void callBus(const char* member, const std::string& argument, std::optional<std::uint32_t> flags,
                 std::function<void(const Reply&)> replied);

    // Of the signal that says that a name's owner has changed.
    static std::string ownerRule(const std::string& name);
    void requestName(const std::string& name);
    void setNameState(const std::string& name, NameState state);
    void listen(const Listener& listener, const char* member);
    bool handleNameSignal(DBusMessage& message);
    bool isAwaited(DBusMessage& message) const;
    void askForUser(const std::string& sender, std::function<void(std::optional<std::uint32_t>)> answered);
    void hear(DBusMessage& message);
    void hearSignal(DBusMessage& message);
    void hearCall(DBusMessage& message);
    const Methods* methodsFor(DBusMessage& message) const;
    void answer(DBusMessage& call, const char* error, const std::string& text);
    void refuse(DBusMessage& message);

    EventSet m_events;
    BusConnection m_connection{m_events, *this};
    BusWatcher m_watcher{m_events, [this] { connectNow(); }};
    EventSet::Token m_retry = 0;
    std::string m_address;
    bool m_absenceLogged = false;
    bool m_isSilent = false;

    Token m_last = 0;
    std::map<std::string, Name> m_names;
    std::map<Token, Methods> m_methods;
    std::map<Token, Listener> m_listeners;
    std::deque<Waiting> m_waiting;
    std::map<Token, std::function<void(const Reply&)>> m_calls; // sent, not yet answered
    BusSenders m_senders{m_events,
                         [this](const auto& sender, auto answered) { askForUser(sender, std::move(answered)); },
                         [this](DBusMessage& message) { hear(message); }, [this](DBusMessage& call) { refuse(call); }};
    LineLimit m_unknown; // lines about calls that nobody waits for
    LineLimit m_invalid; // ... and about those that carry what they should not
};

} // namespace seat
