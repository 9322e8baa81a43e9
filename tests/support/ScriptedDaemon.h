#pragma once

#include "tests/support/DaemonSocket.h"

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace testing_support {

using Bytes = std::vector<std::uint8_t>;

// One accepted connection, as its script sees it. Everything that arrives is kept.
class DaemonPeer {
public:
    explicit DaemonPeer(std::unique_ptr<DaemonSocket> socket) : m_socket(std::move(socket)) {}

    // Waits for `count` more bytes, or the end; gives what came.
    Bytes read(std::size_t count);
    // Waits for the end of the stream.
    void readToEnd();
    void write(const Bytes& bytes) const;
    void writeByteByByte(const Bytes& bytes) const;
    // No more comes from here; what the other side sends is still read.
    void endWriting() const;
    // Waits until the test calls ScriptedDaemon::release().
    void waitForRelease() const { m_wait(); }
    // Drops the connection with what is still unread, so that the other side sees a reset.
    void close();

    const Bytes& received() const { return m_received; }

private:
    friend class ScriptedDaemon;
    std::unique_ptr<DaemonSocket> m_socket; // nullptr once it was closed
    Bytes m_received;
    std::function<void()> m_wait;
};

// A daemon at "<root>/Library/Caches/jvncontrol.sock" on a thread of its own, which treats each connection as its
// script says and keeps the bytes that came.
class ScriptedDaemon {
public:
    using Script = std::function<void(DaemonPeer&)>;

    explicit ScriptedDaemon(
        const std::string& root, Script script = [](DaemonPeer& peer) { peer.readToEnd(); });
    ~ScriptedDaemon();
    ScriptedDaemon(const ScriptedDaemon&) = delete;
    ScriptedDaemon& operator=(const ScriptedDaemon&) = delete;

    void setScript(Script script);
    void release();

    // The bytes of each connection whose script has ended, in the order of acceptance.
    std::vector<Bytes> connections() const;
    std::size_t connectionCount() const { return connections().size(); }
    // False when fewer have ended by then.
    bool waitForConnections(std::size_t count, std::chrono::milliseconds timeout = std::chrono::seconds(10)) const;

private:
    void serve();

    std::unique_ptr<DaemonListener> m_listener;
    mutable std::mutex m_mutex;
    mutable std::condition_variable m_changed;
    Script m_script;
    std::vector<Bytes> m_connections;
    std::size_t m_released = 0;
    bool m_stopping = false;
    std::thread m_thread;
};

// "01 00 00 00 ..." for messages and comparisons.
std::string hex(const Bytes& bytes);

} // namespace testing_support
