#pragma once

#include "platform/foundation/NSDictionary.h"
#include "platform/foundation/id.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace seat {

struct BusSignal {
    std::string path;
    std::string interface;
    std::string member;
    friend bool operator==(const BusSignal&, const BusSignal&) = default;
};

struct BusMethod {
    std::string destination;
    std::string path;
    std::string interface;
    std::string member;
};

// A method call that came in.
struct BusCall {
    std::string sender;
    std::string member;
    // nil when the call carried nothing.
    std::shared_ptr<NSDictionary> dictionary;
};

// The user's session bus. It may be absent, silent, die and come back: names and signals that are wanted are there
// again within 2 s of its return, and while nothing is wanted nothing is tried. Programs of other users than our own
// and root are not listened to, nor one that has gone before the bus could say whose it was. No call waits. Main thread
// only.
class SessionBus {
public:
    using Token = std::uint64_t; // 0 is never given out

    // Connects at the first use. Never destroyed.
    static SessionBus& shared();
    ~SessionBus() = delete;

    bool isConnected() const;
    // Gives up the connection, and all names, methods, signals and unfinished calls; the next use begins afresh. For
    // the end of the process and of a test; not from one of the callbacks.
    void close();

    enum class NameState {
        Owned,
        Taken, // another program has the name; it is asked for again when it is free
        Lost,  // the bus has gone, or the name was taken away
    };
    // Asks for a well-known name until removeName(); `changed` hears how it stands. One asker a name.
    void addName(const std::string& name, std::function<void(NameState)> changed);
    void removeName(const std::string& name);

    // What becomes of a call: done, or not known (the caller is told so).
    enum class CallResult { Done, UnknownMethod };
    // Calls to `path` whose interface is `interface`, or who name none and address `interface` as a bus name. The call
    // carries one dictionary or nothing; one that carries anything else is refused with a logged reason.
    Token addMethods(const std::string& path, const std::string& interface,
                     std::function<CallResult(const BusCall&)> called);
    // Signals of this interface and member, with any path, that are sent to everybody: from any other program, or from
    // the owner of the well-known name `sender` alone.
    Token addSignal(const std::string& interface, const std::string& member,
                    std::function<void(const BusSignal&)> heard, const std::string& sender = {});
    // Methods or signals; unknown ones are ignored.
    void remove(Token token);

    // In the order of the calls. Without a bus the signal is dropped; one line is logged for each absence.
    void emitSignal(const BusSignal& signal);

    struct Reply {
        std::string error; // the bus's error name; empty: it worked
        std::vector<id> arguments;
    };
    // `replied` hears once, also when the bus goes away. `signature` says as what the arguments travel (bus_values.h).
    // A null `replied` asks for no reply.
    void call(const BusMethod& method, const std::string& signature, const std::vector<id>& arguments,
              std::chrono::milliseconds timeout, std::function<void(const Reply&)> replied);

    // True when all that was sent has been written to the bus.
    bool isFlushed() const;

    class Implementation;

private:
    SessionBus();
    std::unique_ptr<Implementation> m_implementation;
};

} // namespace seat
