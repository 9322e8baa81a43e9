#include "tests/support/ScriptedDaemon.h"

#include "tests/support/SystemCalls.h"

#include <cstdio>

namespace testing_support {

Bytes DaemonPeer::read(std::size_t count) {
    Bytes bytes(count);
    std::size_t got = 0;
    while (m_socket && got < count) {
        const std::size_t n = m_socket->read(bytes.data() + got, count - got);
        if (n == 0) break;
        got += n;
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
    if (m_socket) m_socket->write(bytes.data(), bytes.size());
}

void DaemonPeer::writeByteByByte(const Bytes& bytes) const {
    for (const auto byte : bytes) write({byte});
}

void DaemonPeer::endWriting() const {
    if (m_socket) m_socket->endWriting();
}

void DaemonPeer::close() {
    if (m_socket) m_socket->resetWhenClosed();
    m_socket = nullptr;
}

ScriptedDaemon::ScriptedDaemon(const std::string& root, Script script)
    : m_listener(listenUnder(root)), m_script(std::move(script)), m_thread([this] {
          const PeerThread peer;
          serve();
      }) {}

ScriptedDaemon::~ScriptedDaemon() {
    {
        const std::lock_guard lock(m_mutex);
        m_stopping = true;
    }
    m_changed.notify_all();
    m_listener->stop();
    m_thread.join();
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

void ScriptedDaemon::serve() {
    while (auto socket = m_listener->accept()) {
        DaemonPeer peer(std::move(socket));
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
        peer.m_socket = nullptr;
        const std::lock_guard lock(m_mutex);
        m_connections.push_back(std::move(peer.m_received));
        m_changed.notify_all();
    }
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
