// Connections in memory for fake daemons.

#include "tests/memory_seat/Sockets.h"
#include "tests/support/DaemonSocket.h"

namespace testing_support {

namespace {

class MemorySocket final : public DaemonSocket {
public:
    explicit MemorySocket(std::shared_ptr<memory_seat::Connection> connection) : m_connection(std::move(connection)) {}
    ~MemorySocket() override { m_connection->closeServerEnd(); }
    MemorySocket(const MemorySocket&) = delete;
    MemorySocket& operator=(const MemorySocket&) = delete;

    std::size_t read(std::uint8_t* bytes, std::size_t count) override {
        const auto got = m_connection->toServer.read(bytes, count, 0);
        return got > 0 ? static_cast<std::size_t>(got) : 0;
    }
    void write(const std::uint8_t* bytes, std::size_t count) override { m_connection->toClient.write(bytes, count); }
    void endWriting() override { m_connection->toClient.endWriting(); }
    // Every closing is one here: what is unread is lost.
    void resetWhenClosed() override {}

private:
    std::shared_ptr<memory_seat::Connection> m_connection;
};

class MemoryListener final : public DaemonListener {
public:
    explicit MemoryListener(const std::string& path) : m_listener(path) {}

    std::unique_ptr<DaemonSocket> accept() override {
        auto connection = m_listener.accept();
        return connection ? std::make_unique<MemorySocket>(std::move(connection)) : nullptr;
    }
    void stop() override { m_listener.stop(); }

private:
    memory_seat::Listener m_listener;
};

} // namespace

std::unique_ptr<DaemonListener> listenUnder(const std::string& root) {
    return std::make_unique<MemoryListener>(root + "/Library/Caches/jvncontrol.sock");
}

} // namespace testing_support
