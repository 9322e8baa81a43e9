#include "app/help/PadWatch.h"

#include "platform/log.h"
#include "services/jvninput/state_text.h"
#include "system/socket/address.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <sys/socket.h>
#include <utility>

namespace app {

PadWatch::PadWatch(std::function<void()> changed) : m_changed(std::move(changed)) {}
PadWatch::~PadWatch() { close(); }

void PadWatch::open(const std::string& socketPath) {
    close();
    m_problem.clear();
    m_socket.reset(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    int error = m_socket ? seat::connectToPath(m_socket.get(), socketPath) : errno;
    if (error == 0 && !seat::peerIsTrusted(m_socket.get())) error = EACCES;
    if (error != 0) {
        NSLog("connecting to %s: %s", socketPath.c_str(), std::strerror(error));
        m_socket.reset();
        m_problem = error == ENOENT ? "the input service is not installed, or its socket is switched off"
                                    : std::string("the input service does not answer: ") + std::strerror(error);
        return;
    }
    auto hello = input::makeMessage<input::Hello>();
    hello.role = input::Role::listen;
    ::send(m_socket.get(), &hello, sizeof hello, MSG_NOSIGNAL | MSG_DONTWAIT); // what becomes of it is read
    m_source = seat::addReadableSource(m_socket.get(), [this] { readable(); });
}

void PadWatch::close() {
    seat::removeSource(std::exchange(m_source, 0));
    m_socket.reset();
    m_state.reset();
    m_keyboards.reset();
}

void PadWatch::readable() {
    std::array<char, input::maximumMessageSize + 1> buffer; // one that is too large does not pass for a whole one
    bool isNews = false;
    while (m_socket) {
        const auto got = ::recv(m_socket.get(), buffer.data(), buffer.size(), MSG_DONTWAIT);
        if (got < 0 && errno == ECONNRESET) continue; // said once, before what the other side has sent at last
        if (got < 0 && (errno == EAGAIN || errno == EINTR)) break;
        isNews = true;
        if (got <= 0)
            end("the input service has ended the connection");
        else if (!received(buffer.data(), static_cast<std::size_t>(got)))
            end("the input service is of another version");
    }
    if (!isNews) return;
    const auto changed = m_changed;
    changed();
}

// False for what is no message that we know.
bool PadWatch::received(const void* data, std::size_t size) {
    const auto header = input::headerOf(data, size);
    if (header && header->type == input::MessageType::refused && size == sizeof(input::Refused)) {
        input::Refused refused; // can be read whatever the version: it is what tells of it
        std::memcpy(&refused, data, sizeof refused);
        end(jvninput::refusalText(refused.reason));
        return true;
    }
    if (const auto state = input::messageFrom<input::State>(data, size)) return m_state = state, true;
    if (const auto keyboards = input::messageFrom<input::Keyboards>(data, size)) return m_keyboards = keyboards, true;
    return false;
}

void PadWatch::end(const std::string& problem) {
    close();
    m_problem = problem;
}

} // namespace app
