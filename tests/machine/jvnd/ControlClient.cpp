#include "tests/machine/jvnd/ControlClient.h"

#include "system/files/Descriptor.h"
#include "system/socket/address.h"

#include <algorithm>
#include <sys/socket.h>
#include <sys/time.h>

namespace machine {

int ControlClient::send(JVNControlCommand command, unsigned type, std::initializer_list<int> payload) const {
    seat::Descriptor connection(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    if (seat::connectToPath(connection.get(), m_path) != 0) return -1;
    const ::timeval limit{30, 0};
    ::setsockopt(connection.get(), SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
    JVNControlFrame frame;
    frame.command = command;
    frame.controllerType = type;
    std::transform(payload.begin(), payload.end(), frame.payload, [](int byte) { return static_cast<uint8_t>(byte); });
    ::send(connection.get(), &frame, JVNControlFrameSize(command), MSG_NOSIGNAL);
    return ::dup(connection.get());
}

std::optional<ControlClient::Reply> ControlClient::ask(JVNControlCommand command, unsigned type,
                                                       std::initializer_list<int> payload) const {
    const seat::Descriptor connection(send(command, type, payload));
    JVNControlFrame reply;
    if (!connection || ::recv(connection.get(), &reply, JVNControlFrame::baseSize, MSG_WAITALL) !=
                           static_cast<ssize_t>(JVNControlFrame::baseSize))
        return std::nullopt;
    return Reply{static_cast<unsigned>(reply.command), reply.controllerType};
}

bool ControlClient::tell(JVNControlCommand command, unsigned type, std::initializer_list<int> payload) const {
    const seat::Descriptor connection(send(command, type, payload));
    if (!connection) return false;
    JVNControlFrame end;
    end.command = JVNControlCommand::EndSession;
    ::send(connection.get(), &end, JVNControlFrameSize(end.command), MSG_NOSIGNAL);
    char byte = 0;
    return ::recv(connection.get(), &byte, 1, 0) <= 0;
}

bool ControlClient::isServed() const {
    // A keyboard is no controller that could be connected, and is answered at once.
    return ask(JVNControlCommand::Connect, 6) == Reply{9, 2};
}

} // namespace machine
