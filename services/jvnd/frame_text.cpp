#include "services/jvnd/frame_text.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

namespace jvnd {

namespace {

constexpr std::size_t addressAt = JVNControlFrame::baseSize;
constexpr std::size_t shownOfAddressAt = addressAt + 4;

std::string hex(const JVNControlFrame& frame, std::size_t size) {
    constexpr char digits[] = "0123456789abcdef";
    std::array<std::uint8_t, sizeof frame> bytes;
    std::memcpy(bytes.data(), &frame, sizeof frame);
    std::string text;
    for (std::size_t i = 0; i < size; ++i) {
        if (i > 0) text += ' ';
        const bool isHidden = frame.command == JVNControlCommand::Connect && i >= addressAt && i < shownOfAddressAt;
        if (isHidden)
            text += "..";
        else
            text += {digits[bytes[i] >> 4], digits[bytes[i] & 15]};
    }
    return text;
}

std::string typeName(std::uint32_t type) {
    constexpr std::array<const char*, 7> names{"PS3 controller", "DualShock 4", "SYNC button", "X + HOME 1",
                                               "X + HOME 2",     "X + HOME 3",  "keyboard"};
    return type < names.size() ? names[type] : "type " + std::to_string(type);
}

std::string meaning(const JVNControlFrame& frame) {
    const auto type = typeName(frame.controllerType);
    const auto* const payload = frame.payload;
    switch (frame.command) {
    case JVNControlCommand::Disconnect:
        return "Disconnect, " + type;
    case JVNControlCommand::Connect: {
        const bool isAddressed =
            std::any_of(payload, payload + JVNControlFrame::addressSize, [](auto b) { return b != 0; });
        return "Connect, " + type + (isAddressed ? ", with an address" : ", without an address");
    }
    case JVNControlCommand::RestartDaemons:
        return "RestartDaemons";
    case JVNControlCommand::SetLEDColor: {
        const std::string bytes = hex(frame, JVNControlFrame::colorSize);
        return "SetLEDColor, " + type + ", " + bytes.substr(3 * JVNControlFrame::baseSize, 8);
    }
    case JVNControlCommand::QueryConnection:
        return "QueryConnection";
    case JVNControlCommand::EndSession:
        return "EndSession";
    case JVNControlCommand::ConnectAccepted:
    case JVNControlCommand::ConnectRefused:
        break;
    }
    return "unknown command";
}

} // namespace

std::string frameText(const JVNControlFrame& frame) {
    return hex(frame, JVNControlFrameSize(frame.command)) + " | " + meaning(frame);
}

std::string replyText(const JVNControlFrame& asked, const JVNControlFrame& reply) {
    const auto second = std::to_string(reply.controllerType);
    std::string text = hex(reply, JVNControlFrame::baseSize) + " | ";
    if (asked.command == JVNControlCommand::QueryConnection)
        return text + (reply.controllerType == JVNConnectionStateUnknown ? "state 7, not known"
                                                                         : "state " + second + ", connected");
    return text +
           (reply.command == JVNControlCommand::ConnectAccepted ? "ConnectAccepted" : "refused, reason " + second);
}

} // namespace jvnd
