#include "daemonlink/exchanges.h"

#include "platform/socket.h"

#include <cstddef>

namespace {

constexpr std::uint32_t controllerTypeDualShock4 = 1;

void send(int descriptor, const JVNControlFrame& frame) {
    platform::send(descriptor, &frame, JVNControlFrameSize(frame.command), 0);
}

// A reply counts only whole: what a time-out or a closing peer cut short may begin like an answer.
bool receiveReply(int descriptor, JVNControlFrame& reply) {
    return platform::recv(descriptor, &reply, JVNControlFrame::baseSize, platform::MSG_WAITALL_FLAG) ==
           static_cast<std::ptrdiff_t>(JVNControlFrame::baseSize);
}

} // namespace

namespace daemonlink {

bool setReplyTimeout(int descriptor, long seconds) {
    const platform::timeval timeout{seconds, 0};
    return platform::setsockopt(descriptor, platform::SOL_SOCKET_LEVEL, platform::SO_RCVTIMEO_OPTION, &timeout,
                                sizeof timeout) != -1;
}

QueryReply queryConnection(int descriptor, JVNControlFrame& frame) {
    frame.command = JVNControlCommand::QueryConnection;
    send(descriptor, frame);
    if (!receiveReply(descriptor, frame)) return QueryReply::NotConnected;
    return frame.controllerType == JVNConnectionStateUnknown ? QueryReply::Unknown : QueryReply::Connected;
}

bool connect(int descriptor, JVNControlFrame& frame, std::uint32_t controllerType) {
    frame.command = JVNControlCommand::Connect;
    frame.controllerType = controllerType;
    frame.flag = 0;
    send(descriptor, frame);

    JVNControlFrame reply;
    if (receiveReply(descriptor, reply) && reply.command == JVNControlCommand::ConnectAccepted) return true;
    reply.command = JVNControlCommand::EndSession;
    send(descriptor, reply);
    return false;
}

void disconnect(int descriptor, JVNControlFrame& frame, std::uint32_t controllerType) {
    frame.command = JVNControlCommand::Disconnect;
    frame.controllerType = controllerType;
    frame.flag = 0;
    send(descriptor, frame);
    frame.command = JVNControlCommand::EndSession;
    send(descriptor, frame);
}

void setLEDColor(int descriptor, std::uint8_t red, std::uint8_t green, std::uint8_t blue) {
    JVNControlFrame frame;
    frame.command = JVNControlCommand::SetLEDColor;
    frame.controllerType = controllerTypeDualShock4;
    frame.payload[0] = red;
    frame.payload[1] = green;
    frame.payload[2] = blue;
    send(descriptor, frame);
}

void restartDaemons(int descriptor) {
    JVNControlFrame frame;
    frame.command = JVNControlCommand::RestartDaemons;
    send(descriptor, frame);
}

} // namespace daemonlink
