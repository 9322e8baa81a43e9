#pragma once

#include <chrono>
#include <functional>
#include <string>

struct DBusConnection;
struct DBusMessage;
struct DBusMessageIter;

namespace testing_support {

// Another program on the bus, in the plainest way: its calls wait for what they ask for, so those that need an answer
// from the thread under test belong on another thread.
class BusPeer {
public:
    explicit BusPeer(const std::string& address);
    ~BusPeer();
    BusPeer(const BusPeer&) = delete;
    BusPeer& operator=(const BusPeer&) = delete;

    using Arguments = std::function<void(DBusMessageIter&)>;

    // To everybody, or to the connection with that name alone.
    void emitSignal(const std::string& path, const std::string& interface, const std::string& member,
                    const std::string& destination = {}) const;
    // Sends a call and does not wait for it to arrive anywhere. An empty interface sends none.
    void send(const std::string& destination, const std::string& path, const std::string& interface,
              const std::string& member, const Arguments& arguments = nullptr) const;
    // The name of the error that came back; empty when it worked.
    std::string call(const std::string& destination, const std::string& path, const std::string& interface,
                     const std::string& member, const Arguments& arguments = nullptr,
                     std::chrono::milliseconds timeout = std::chrono::seconds(10)) const;
    // Until all that was sent has been written.
    void flush() const;

    bool ownName(const std::string& name) const; // false: it is another's, and this peer does not wait for it
    void giveUpName(const std::string& name) const;
    bool nameHasOwner(const std::string& name) const;
    // The owner of a name and those who wait for it.
    int ownersAndWaiting(const std::string& name) const;
    std::string uniqueName() const;

    void listen(const std::string& rule) const;
    // "<path> <interface>.<member>" of the next signal that is none of the bus's own; empty when none comes in time.
    // Without any time it takes what has come already.
    std::string nextSignal(std::chrono::milliseconds timeout = std::chrono::seconds(10)) const;

private:
    DBusMessage* message(const std::string& destination, const std::string& path, const std::string& interface,
                         const std::string& member, const Arguments& arguments) const;

    DBusConnection* m_connection;
};

// {key: variant of int32}, the dictionary of a progress report.
BusPeer::Arguments integerDictionary(const std::string& key, int value);

} // namespace testing_support
