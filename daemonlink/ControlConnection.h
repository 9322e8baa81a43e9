#pragma once

#include <utility>

// An open connection to the daemon's control socket: one exchange long, closed by its owner on every path. Any thread,
// one at a time.
class ControlConnection {
public:
    ControlConnection() = default;
    explicit ControlConnection(int descriptor) : m_descriptor(descriptor) {}
    ~ControlConnection() { close(); }
    ControlConnection(ControlConnection&& other) noexcept : m_descriptor(std::exchange(other.m_descriptor, -1)) {}
    ControlConnection& operator=(ControlConnection&& other) noexcept;

    // Closed when the daemon cannot be reached; never waits.
    static ControlConnection open();

    explicit operator bool() const { return m_descriptor != -1; }
    int descriptor() const { return m_descriptor; }
    int release() { return std::exchange(m_descriptor, -1); }
    void close();

private:
    int m_descriptor = -1; // 0 is a descriptor like any other
};
