#include "simulator/control_frames.h"

#include <algorithm>
#include <array>

namespace simulator {

namespace {

std::string typeName(std::uint32_t type) {
    constexpr std::array<const char*, 7> names{"PS3 controller", "DualShock 4", "SYNC button", "X + HOME 1",
                                               "X + HOME 2",     "X + HOME 3",  "keyboard"};
    return type < names.size() ? names[type] : "type " + std::to_string(type);
}

} // namespace

std::uint32_t word(std::span<const std::uint8_t> bytes, std::size_t at) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < 4 && at + i < bytes.size(); ++i)
        value |= static_cast<std::uint32_t>(bytes[at + i]) << (8 * i);
    return value;
}

std::optional<std::size_t> frameSize(std::uint32_t command) {
    switch (static_cast<Command>(command)) {
    case Command::Disconnect:
    case Command::QueryConnection:
    case Command::EndSession:
        return 12;
    case Command::Connect:
    case Command::RestartDaemons:
        return 20;
    case Command::SetLEDColor:
        return 16;
    }
    return std::nullopt;
}

std::string describeFrame(std::span<const std::uint8_t> frame) {
    const std::string type = typeName(word(frame, 4));
    switch (static_cast<Command>(word(frame, 0))) {
    case Command::Disconnect:
        return "Disconnect, " + type;
    case Command::Connect: {
        const bool addressed = std::ranges::any_of(frame.subspan(12, 6), [](auto byte) { return byte != 0; });
        return "Connect, " + type + (addressed ? ", with an address" : ", without an address");
    }
    case Command::RestartDaemons:
        return "RestartDaemons";
    case Command::SetLEDColor:
        return "SetLEDColor, " + type + ", " + hex(frame.subspan(12, 3));
    case Command::QueryConnection:
        return "QueryConnection";
    case Command::EndSession:
        return "EndSession";
    }
    return "unknown command";
}

std::string describeReply(Command asked, std::span<const std::uint8_t> reply) {
    if (reply.size() != replySize) return std::to_string(reply.size()) + " bytes";
    if (asked == Command::Connect) {
        const auto code = word(reply, 0);
        return code == connectAccepted ? "ConnectAccepted" : "code " + std::to_string(code);
    }
    const auto state = word(reply, 4);
    return state == stateUnknown ? "state 7, not known" : "state " + std::to_string(state) + ", connected";
}

Bytes makeReply(std::uint32_t first, std::uint32_t second) {
    Bytes reply(replySize);
    for (std::size_t i = 0; i < 4; ++i) {
        reply[i] = static_cast<std::uint8_t>(first >> (8 * i));
        reply[4 + i] = static_cast<std::uint8_t>(second >> (8 * i));
    }
    return reply;
}

std::string hex(std::span<const std::uint8_t> bytes) {
    constexpr char digits[] = "0123456789abcdef";
    std::string text;
    for (const auto byte : bytes) {
        if (!text.empty()) text += ' ';
        text += digits[byte >> 4];
        text += digits[byte & 15];
    }
    return text;
}

} // namespace simulator
