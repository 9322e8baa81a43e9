#include "tests/support/ScriptedDaemon.h"

#include "tests/memory_seat/Sockets.h"

#include <cstdio>
#include <map>

namespace testing_support {

namespace {

// A peer knows its connection by a number.
struct Peers {
    std::mutex mutex;
    std::map<int, std::shared_ptr<memory_seat::Connection>> open;
    int last = 0;
};
Peers& peers() {
    static auto* const peers = new Peers;
    return *peers;
}

std::shared_ptr<memory_seat::Connection> connectionOf(int number) {
    const std::lock_guard lock(peers().mutex);
    const auto found = peers().open.find(number);
    return found == peers().open.end() ? nullptr : found->second;
}

// Where the daemon of that number listens.
std::map<const ScriptedDaemon*, std::unique_ptr<memory_seat::Listener>>& listeners() {
    static auto* const listeners = new std::map<const ScriptedDaemon*, std::unique_ptr<memory_seat::Listener>>;
    return *listeners;
}

} // namespace

Bytes DaemonPeer::read(std::size_t count) {
    Bytes bytes(count);
    std::size_t got = 0;
    const auto connection = connectionOf(m_descriptor);
    while (connection && got < count) {
        const auto n = connection->toServer.read(bytes.data() + got, count - got, 0);
        if (n <= 0) break;
        got += static_cast<std::size_t>(n);
    }
    bytes.resize(got);
    m_received.insert(m_received.end(), bytes.begin(), bytes.end());
    return bytes;
}

void DaemonPeer::readToEnd() {
    while (!read(1).empty()) {
    }
}

void DaemonPeer::write(const Bytes& bytes) const {
    if (const auto connection = connectionOf(m_descriptor)) connection->toClient.write(bytes.data(), bytes.size());
}

void DaemonPeer::writeByteByByte(const Bytes& bytes) const {
    for (const auto byte : bytes) write({byte});
}

void DaemonPeer::endWriting() const {
    if (const auto connection = connectionOf(m_descriptor)) connection->toClient.endWriting();
}

void DaemonPeer::close() {
    if (const auto connection = connectionOf(m_descriptor)) {
        connection->closeServerEnd();
        const std::lock_guard lock(peers().mutex);
        peers().open.erase(m_descriptor);
    }
    m_descriptor = -1;
}

ScriptedDaemon::ScriptedDaemon(const std::string& root, Script script)
    : m_path(root + "/Library/Caches/jvncontrol.sock"), m_script(std::move(script)) {
    auto* const listener = (listeners()[this] = std::make_unique<memory_seat::Listener>(m_path)).get();
    m_thread = std::thread([this, listener] {
        while (const auto connection = listener->accept()) {
            {
                const std::lock_guard lock(peers().mutex);
                peers().open[++peers().last] = connection;
                m_listener = peers().last;
            }
            serve();
        }
    });
}

ScriptedDaemon::~ScriptedDaemon() {
    {
        const std::lock_guard lock(m_mutex);
        m_stopping = true;
    }
    m_changed.notify_all();
    listeners()[this]->stop();
    m_thread.join();
    listeners().erase(this);
}

void ScriptedDaemon::setScript(Script script) {
    const std::lock_guard lock(m_mutex);
    m_script = std::move(script);
}

void ScriptedDaemon::release() {
    const std::lock_guard lock(m_mutex);
    ++m_released;
    m_changed.notify_all();
}

std::vector<Bytes> ScriptedDaemon::connections() const {
    const std::lock_guard lock(m_mutex);
    return m_connections;
}

bool ScriptedDaemon::waitForConnections(std::size_t count, std::chrono::milliseconds timeout) const {
    std::unique_lock lock(m_mutex);
    return m_changed.wait_for(lock, timeout, [&] { return m_connections.size() >= count; });
}

// The connection that was accepted last.
void ScriptedDaemon::serve() {
    DaemonPeer peer(m_listener);
    peer.m_wait = [this] {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [&] { return m_released > 0 || m_stopping; });
        if (m_released > 0) --m_released;
    };
    Script script;
    {
        const std::lock_guard lock(m_mutex);
        script = m_script;
    }
    script(peer);
    peer.close();
    const std::lock_guard lock(m_mutex);
    m_connections.push_back(std::move(peer.m_received));
    m_changed.notify_all();
}

std::string hex(const Bytes& bytes) {
    std::string text;
    for (const auto byte : bytes) {
        char pair[4];
        std::snprintf(pair, sizeof pair, text.empty() ? "%02x" : " %02x", byte);
        text += pair;
    }
    return text;
}

} // namespace testing_support
