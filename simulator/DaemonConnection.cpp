#include "simulator/DaemonConnection.h"

#include "simulator/output_lines.h"

#include <algorithm>
#include <cerrno>
#include <sys/socket.h>
#include <utility>

namespace simulator {

using CloseAt = DaemonManner::CloseAt;

DaemonConnection::DaemonConnection(int number, seat::Descriptor descriptor, DaemonManner manner,
                                   std::function<Bytes(std::span<const std::uint8_t>)> answer,
                                   std::function<void()> ended)
    : m_number(number), m_descriptor(std::move(descriptor)), m_manner(std::move(manner)), m_answer(std::move(answer)),
      m_ended(std::move(ended)) {
    say("%d opened", m_number);
    if (m_manner.closeAt == CloseAt::Accept)
        m_timer = seat::addTimer(0, [this] { hangUp("closed on accepting"); });
    else if (m_manner.reads)
        m_source = seat::addReadableSource(m_descriptor.get(), [this] { readable(); });
}

DaemonConnection::~DaemonConnection() {
    seat::removeSource(m_source);
    seat::removeSource(m_timer);
}

void DaemonConnection::readable() {
    // One byte, so that the rest is unread when we hang up on it.
    std::uint8_t bytes[256];
    const bool one = m_manner.closeAt == CloseAt::FirstByte;
    const auto got = ::recv(m_descriptor.get(), bytes, one ? 1 : sizeof bytes, MSG_DONTWAIT);
    if (got < 0 && (errno == EAGAIN || errno == EINTR)) return;
    if (got <= 0) return hangUp(m_received.empty() ? "closed by the other side" : "closed within a frame");
    if (one) return hangUp("closed after a byte");
    m_received.insert(m_received.end(), bytes, bytes + got);
    while (takeFrame()) {
    }
}

// False when there is none.
bool DaemonConnection::takeFrame() {
    if (!m_descriptor || m_received.size() < 4) return false;
    const auto size = frameSize(word(m_received, 0));
    if (!size) {
        say("%d < %s | unknown command", m_number, hex(m_received).c_str());
        hangUp("closed: nobody knows where the next frame begins");
        return false;
    }
    if (m_received.size() < *size) return false;
    const Bytes frame(m_received.begin(), m_received.begin() + static_cast<std::ptrdiff_t>(*size));
    m_received.erase(m_received.begin(), m_received.begin() + static_cast<std::ptrdiff_t>(*size));
    say("%d < %s | %s", m_number, hex(frame).c_str(), describeFrame(frame).c_str());
    if (m_manner.closeAt == CloseAt::Frame) {
        hangUp("closed after a frame");
        return false;
    }
    Bytes reply = m_answer(frame);
    if (reply.empty() || !m_manner.answers) return true;
    m_asked = static_cast<Command>(word(frame, 0));
    m_reply = inOurManner(std::move(reply), m_asked);
    sendLater(m_manner.delay / 1000.0, 0);
    return true;
}

Bytes DaemonConnection::inOurManner(Bytes reply, Command asked) const {
    if (m_manner.code && asked == Command::Connect) reply = makeReply(*m_manner.code, word(reply, 4));
    if (m_manner.state && asked == Command::QueryConnection) reply = makeReply(word(reply, 0), *m_manner.state);
    if (m_manner.garbage)
        for (std::size_t i = 0; i < reply.size(); ++i) reply[i] = static_cast<std::uint8_t>(0xa5 + 37 * i);
    if (m_manner.reply) reply = *m_manner.reply;
    if (m_manner.bytes && *m_manner.bytes < reply.size()) reply.resize(*m_manner.bytes);
    reply.resize(reply.size() + m_manner.extra, 0xee);
    return reply;
}

void DaemonConnection::sendLater(double seconds, std::size_t at) {
    if (at == 0 && seconds == 0 && m_manner.trickle == 0) return sendFrom(0);
    const double wait = at == 0 ? seconds : m_manner.trickle / 1000.0;
    m_timer = seat::addTimer(wait, [this, at] { sendFrom(at); });
}

void DaemonConnection::sendFrom(std::size_t at) {
    m_timer = 0;
    const std::size_t count = m_manner.trickle > 0 ? std::min<std::size_t>(1, m_reply.size() - at) : m_reply.size();
    if (count > 0) ::send(m_descriptor.get(), m_reply.data() + at, count, MSG_NOSIGNAL | MSG_DONTWAIT);
    if (at + count < m_reply.size()) return sendLater(0, at + count);
    say("%d > %s | %s", m_number, hex(m_reply).c_str(), describeReply(m_asked, m_reply).c_str());
    if (m_manner.closeAt == CloseAt::Answer)
        hangUp("closed after an answer");
    else if (m_manner.bytes && !m_manner.holds)
        hangUp("closed within an answer");
}

void DaemonConnection::hangUp(const char* why) {
    seat::removeSource(std::exchange(m_source, 0));
    seat::removeSource(std::exchange(m_timer, 0));
    m_descriptor.reset();
    say("%d %s", m_number, why);
    m_ended();
}

} // namespace simulator
