#include "daemonlink/exchanges.h"

#include "platform/log.h"
#include "platform/socket.h"

#include <cerrno>
#include <cstddef>
#include <cstring>
#include <string>

namespace {

constexpr std::uint32_t controllerTypeDualShock4 = 1;

// One exchange on a connection. Of what fails in it the first thing is logged: the rest follows from that.
class Exchange {
public:
    Exchange(const char* name, int descriptor) : m_name(name), m_descriptor(descriptor) {}

    void send(const JVNControlFrame& frame, std::size_t size) {
        const std::ptrdiff_t sent = platform::send(m_descriptor, &frame, size, 0);
        if (sent == -1)
            complain("sending to the daemon", std::strerror(errno));
        else if (sent != static_cast<std::ptrdiff_t>(size))
            complain("sending to the daemon", "it takes no more");
    }

    // A reply counts only whole: what a time-out or a closing peer cut short may begin like an answer. A daemon may say
    // something by closing without one.
    enum class Closing { IsAnAnswer, IsAFailure };
    bool receiveReply(JVNControlFrame& reply, Closing closing) {
        const std::ptrdiff_t received =
            platform::recv(m_descriptor, &reply, JVNControlFrame::baseSize, platform::MSG_WAITALL_FLAG);
        if (received == static_cast<std::ptrdiff_t>(JVNControlFrame::baseSize)) return true;
        if (received == -1)
            complain("waiting for the daemon's answer", errno == EAGAIN ? "none came in time" : std::strerror(errno));
        else if (received > 0)
            complain("waiting for the daemon's answer", "it was cut short");
        else if (closing == Closing::IsAFailure)
            complain("waiting for the daemon's answer", "it closed the connection instead");
        return false;
    }

    void complain(const char* operation, const char* reason) {
        if (!m_hasFailed) NSLog("%s: %s: %s", m_name, operation, reason);
        m_hasFailed = true;
    }

private:
    const char* m_name;
    int m_descriptor;
    bool m_hasFailed = false;
};

} // namespace

namespace daemonlink {

bool setReplyTimeout(int descriptor, long seconds) {
    const platform::timeval timeout{seconds, 0};
    if (platform::setsockopt(descriptor, platform::SOL_SOCKET_LEVEL, platform::SO_RCVTIMEO_OPTION, &timeout,
                             sizeof timeout) != -1)
        return true;
    NSLog("setting the time-out of the connection to the daemon: %s", std::strerror(errno));
    return false;
}

QueryReply queryConnection(int descriptor, JVNControlFrame& frame) {
    Exchange exchange("query", descriptor);
    frame.command = JVNControlCommand::QueryConnection;
    exchange.send(frame, JVNControlFrame::baseSize);
    if (!exchange.receiveReply(frame, Exchange::Closing::IsAnAnswer)) return QueryReply::NotConnected;
    return frame.controllerType == JVNConnectionStateUnknown ? QueryReply::Unknown : QueryReply::Connected;
}

bool connect(int descriptor, JVNControlFrame& frame, std::uint32_t controllerType) {
    Exchange exchange("connect", descriptor);
    frame.command = JVNControlCommand::Connect;
    frame.controllerType = controllerType;
    frame.flag = 0;
    exchange.send(frame, JVNControlFrame::fullSize);

    JVNControlFrame reply;
    if (exchange.receiveReply(reply, Exchange::Closing::IsAFailure)) {
        if (reply.command == JVNControlCommand::ConnectAccepted) return true;
        exchange.complain("asking the daemon",
                          ("it refuses, with answer " + std::to_string(static_cast<std::uint32_t>(reply.command)) +
                           " and reason " + std::to_string(reply.controllerType))
                              .c_str());
    }
    reply.command = JVNControlCommand::EndSession;
    exchange.send(reply, JVNControlFrame::baseSize);
    return false;
}

void disconnect(int descriptor, JVNControlFrame& frame, std::uint32_t controllerType) {
    Exchange exchange("disconnect", descriptor);
    frame.command = JVNControlCommand::Disconnect;
    frame.controllerType = controllerType;
    frame.flag = 0;
    exchange.send(frame, JVNControlFrame::baseSize);
    frame.command = JVNControlCommand::EndSession;
    exchange.send(frame, JVNControlFrame::baseSize);
}

void setLEDColor(int descriptor, std::uint8_t red, std::uint8_t green, std::uint8_t blue) {
    JVNControlFrame frame;
    frame.command = JVNControlCommand::SetLEDColor;
    frame.controllerType = controllerTypeDualShock4;
    frame.payload[0] = red;
    frame.payload[1] = green;
    frame.payload[2] = blue;
    Exchange("LED colour", descriptor).send(frame, JVNControlFrame::colorSize);
}

void restartDaemons(int descriptor) {
    JVNControlFrame frame;
    frame.command = JVNControlCommand::RestartDaemons;
    Exchange("restart of the daemons", descriptor).send(frame, JVNControlFrame::fullSize);
}

} // namespace daemonlink
