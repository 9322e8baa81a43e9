#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace memory_seat {

// One direction of a connection. Any thread.
class Pipe {
public:
    // What is written after the reader has gone is lost: false.
    bool write(const void* bytes, std::size_t count);
    // Waits for at least one byte, the end (0) or the time-out (-1); `timeoutSeconds` 0 waits for ever.
    std::ptrdiff_t read(void* bytes, std::size_t count, double timeoutSeconds);
    void endWriting();
    void endReading();

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<std::uint8_t> m_bytes;
    bool m_writerGone = false;
    bool m_readerGone = false;
};

struct Connection {
    Pipe toServer;
    Pipe toClient;

    // The end that was accepted.
    void closeServerEnd();
};

// A place where connections arrive, at a path, while it lives. Any thread.
class Listener {
public:
    explicit Listener(const std::string& path);
    ~Listener();
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    // Waits; nullptr once stop() was called.
    std::shared_ptr<Connection> accept();
    void stop();

private:
    struct State;
    std::string m_path;
    std::shared_ptr<State> m_state;

    friend std::shared_ptr<Connection> connectTo(const std::string& path);
};

// nullptr when nobody listens there, or too many wait already.
std::shared_ptr<Connection> connectTo(const std::string& path);

// How many ends of sockets are open: descriptors, and accepted ends.
std::size_t openDescriptors();

} // namespace memory_seat
