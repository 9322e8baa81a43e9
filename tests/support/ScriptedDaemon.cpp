#include "tests/support/ScriptedDaemon.h"

#include "tests/support/SystemCalls.h"

#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <poll.h>
#include <stdexcept>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace testing_support {

Bytes DaemonPeer::read(std::size_t count) {
    Bytes bytes(count);
    std::size_t got = 0;
    while (got < count) {
        const ssize_t n = ::recv(m_descriptor, bytes.data() + got, count - got, 0);
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

void DaemonPeer::write(const Bytes& bytes) const { ::send(m_descriptor, bytes.data(), bytes.size(), MSG_NOSIGNAL); }

void DaemonPeer::writeByteByByte(const Bytes& bytes) const {
    for (const auto byte : bytes) write({byte});
}

void DaemonPeer::endWriting() const { ::shutdown(m_descriptor, SHUT_WR); }

void DaemonPeer::close() {
    if (m_descriptor == -1) return;
    const linger reset{1, 0};
    ::setsockopt(m_descriptor, SOL_SOCKET, SO_LINGER, &reset, sizeof reset);
    ::close(m_descriptor);
    m_descriptor = -1;
}

ScriptedDaemon::ScriptedDaemon(const std::string& root, Script script) : m_script(std::move(script)) {
    const std::filesystem::path folder = root + "/Library/Caches";
    std::filesystem::create_directories(folder);
    m_path = folder / "jvncontrol.sock";
    ::unlink(m_path.c_str());
    // Bound by its short name under an open folder: a root may be longer than an address.
    const int directory = ::open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::snprintf(address.sun_path, sizeof address.sun_path, "/proc/self/fd/%d/jvncontrol.sock", directory);
    m_listener = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const bool bound = ::bind(m_listener, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    ::close(directory);
    if (!bound || ::listen(m_listener, 64) != 0 || ::pipe2(m_stop, O_CLOEXEC) != 0)
        throw std::runtime_error("no stand-in daemon at " + m_path + ": " + std::strerror(errno));
    m_thread = std::thread([this] {
        const PeerThread peer;
        serve();
    });
}

ScriptedDaemon::~ScriptedDaemon() {
    {
        const std::lock_guard lock(m_mutex);
        m_stopping = true;
    }
    m_changed.notify_all();
    ::close(m_stop[1]);
    m_thread.join();
    ::close(m_stop[0]);
    ::close(m_listener);
    ::unlink(m_path.c_str());
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
    for (;;) {
        pollfd watched[2] = {{m_listener, POLLIN, 0}, {m_stop[0], POLLIN, 0}};
        if (::poll(watched, 2, -1) < 0 || watched[1].revents) return;
        const int descriptor = ::accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (descriptor == -1) continue;
        DaemonPeer peer(descriptor);
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
        if (peer.m_descriptor != -1) ::close(peer.m_descriptor);
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
