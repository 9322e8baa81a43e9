#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace testing_support {

// A daemon's end of one connection; its destruction closes it. What it is made of is the seat's: a socket, or memory.
class DaemonSocket {
public:
    virtual ~DaemonSocket() = default;
    // Waits for at least one byte; 0 at the end.
    virtual std::size_t read(std::uint8_t* bytes, std::size_t count) = 0;
    // Whether anybody still reads does not matter.
    virtual void write(const std::uint8_t* bytes, std::size_t count) = 0;
    virtual void endWriting() = 0;
    // From now on the destruction is a reset for the other side.
    virtual void resetWhenClosed() = 0;
};

// Where a daemon's connections arrive.
class DaemonListener {
public:
    virtual ~DaemonListener() = default;
    // Waits; nullptr once stop() was called.
    virtual std::unique_ptr<DaemonSocket> accept() = 0;
    // From any thread.
    virtual void stop() = 0;
};

// At "<root>/Library/Caches/jvncontrol.sock", however long that is. Throws when it cannot.
std::unique_ptr<DaemonListener> listenUnder(const std::string& root);

} // namespace testing_support
