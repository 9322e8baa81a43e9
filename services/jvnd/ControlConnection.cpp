#include "services/jvnd/ControlConnection.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <sys/epoll.h>
#include <sys/socket.h>

namespace jvnd {

namespace {

// So much of a caller's is taken at once, before others have their turn: a dozen frames.
constexpr std::size_t readAtOnce = 240;

} // namespace

ControlConnection::ControlConnection(services::EventLoop& loop, std::uint64_t number, seat::Descriptor descriptor,
                                     CommandHandler& handler, std::function<void()> ended)
    : m_loop(loop), m_number(number), m_descriptor(std::move(descriptor)), m_handler(handler),
      m_ended(std::move(ended)), m_lastSign(loop.now()) {}

ControlConnection::~ControlConnection() { m_handler.callerGone(*this); }

// Most callers have asked by the time that they are taken, and need not wait until the loop knows of them.
void ControlConnection::start() {
    if (!readSome()) return;
    m_silence = m_loop.after(longestSilence, [this] { checkSilence(); });
    watch();
}

void ControlConnection::watch() {
    m_ready.reset();
    m_ready = m_loop.watchUrgently(m_descriptor.get(), m_unsent.empty() ? EPOLLIN : EPOLLOUT, [this](std::uint32_t) {
        if (m_unsent.empty())
            readSome();
        else
            writeSome();
    });
}

bool ControlConnection::readSome() {
    std::array<std::uint8_t, readAtOnce> bytes;
    const auto got = ::recv(m_descriptor.get(), bytes.data(), bytes.size(), MSG_DONTWAIT);
    if (got < 0 && (errno == EAGAIN || errno == EINTR)) return true;
    if (got <= 0) return end(), false;

    m_isReading = true;
    std::span<const std::uint8_t> rest(bytes.data(), static_cast<std::size_t>(got));
    JVNControlFrame frame;
    auto result = m_reader.next(rest, frame);
    for (; result == FrameReader::Result::Frame; result = m_reader.next(rest, frame)) {
        m_lastSign = m_loop.now();
        if (m_handler.handle(*this, frame) == CommandHandler::Then::Close) return end(), false;
    }
    m_isReading = false;
    if (result == FrameReader::Result::Invalid) return end(), false;
    if (!m_unsent.empty()) watch();
    return true;
}

void ControlConnection::reply(const JVNControlFrame& frame) {
    m_lastSign = m_loop.now();
    const bool wasStuck = !m_unsent.empty();
    std::size_t sent = 0;
    if (!wasStuck) {
        const auto count = ::send(m_descriptor.get(), &frame, JVNControlFrame::baseSize, MSG_DONTWAIT | MSG_NOSIGNAL);
        // A caller that has gone shows in its end, which is still to be read.
        if (count < 0 && errno != EAGAIN) return;
        sent = count < 0 ? 0 : static_cast<std::size_t>(count);
    }
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(&frame);
    m_unsent.insert(m_unsent.end(), bytes + sent, bytes + JVNControlFrame::baseSize);
    if (!wasStuck && !m_unsent.empty() && !m_isReading) watch();
}

void ControlConnection::writeSome() {
    const auto sent = ::send(m_descriptor.get(), m_unsent.data(), m_unsent.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
    if (sent < 0 && (errno == EAGAIN || errno == EINTR)) return;
    if (sent < 0) return end();
    m_lastSign = m_loop.now();
    m_unsent.erase(m_unsent.begin(), m_unsent.begin() + sent);
    if (m_unsent.empty()) watch();
}

void ControlConnection::checkSilence() {
    const auto now = m_loop.now();
    if (m_handler.isWaiting(*this)) m_lastSign = now; // the answer to come is the next sign
    if (now - m_lastSign >= longestSilence) return end();
    m_silence = m_loop.after(m_lastSign + longestSilence - now, [this] { checkSilence(); });
}

void ControlConnection::end() {
    m_ready.reset();
    m_silence.reset();
    const auto ended = std::move(m_ended);
    ended();
}

} // namespace jvnd
