// Real sockets for fake daemons.

#include "tests/support/DaemonSocket.h"

#include <cerrno>
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

namespace {

class UnixSocket final : public DaemonSocket {
public:
    explicit UnixSocket(int descriptor) : m_descriptor(descriptor) {}
    ~UnixSocket() override { ::close(m_descriptor); }
    UnixSocket(const UnixSocket&) = delete;
    UnixSocket& operator=(const UnixSocket&) = delete;

    std::size_t read(std::uint8_t* bytes, std::size_t count) override {
        const ssize_t got = ::recv(m_descriptor, bytes, count, 0);
        return got > 0 ? static_cast<std::size_t>(got) : 0;
    }
    void write(const std::uint8_t* bytes, std::size_t count) override {
        ::send(m_descriptor, bytes, count, MSG_NOSIGNAL);
    }
    void endWriting() override { ::shutdown(m_descriptor, SHUT_WR); }
    void resetWhenClosed() override {
        const linger reset{1, 0};
        ::setsockopt(m_descriptor, SOL_SOCKET, SO_LINGER, &reset, sizeof reset);
    }

private:
    int m_descriptor;
};

class UnixListener final : public DaemonListener {
public:
    explicit UnixListener(const std::string& root) {
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
            throw std::runtime_error("no fake daemon at " + m_path + ": " + std::strerror(errno));
    }
    ~UnixListener() override {
        stop();
        ::close(m_stop[0]);
        ::close(m_listener);
        ::unlink(m_path.c_str());
    }
    UnixListener(const UnixListener&) = delete;
    UnixListener& operator=(const UnixListener&) = delete;

    std::unique_ptr<DaemonSocket> accept() override {
        for (;;) {
            pollfd watched[2] = {{m_listener, POLLIN, 0}, {m_stop[0], POLLIN, 0}};
            if (::poll(watched, 2, -1) < 0 || watched[1].revents) return nullptr;
            const int descriptor = ::accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
            if (descriptor != -1) return std::make_unique<UnixSocket>(descriptor);
        }
    }
    void stop() override {
        if (m_stop[1] != -1) ::close(m_stop[1]);
        m_stop[1] = -1;
    }

private:
    int m_listener = -1;
    int m_stop[2] = {-1, -1};
    std::string m_path;
};

} // namespace

std::unique_ptr<DaemonListener> listenUnder(const std::string& root) { return std::make_unique<UnixListener>(root); }

} // namespace testing_support
