#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <type_traits>

// What a frame asks of the daemon, or (8 and 9) what the daemon answers to Connect. Code 2 is not ours.
enum class JVNControlCommand : std::uint32_t {
    Disconnect = 0,
    Connect = 1,
    RestartDaemons = 3,
    SetLEDColor = 4,
    QueryConnection = 5,
    EndSession = 6,
    ConnectAccepted = 8,
    ConnectRefused = 9, // the reason is in the place of the type
};

// The state in the reply to QueryConnection that says nothing about the connection.
inline constexpr std::uint32_t JVNConnectionStateUnknown = 7;

// Every command and reply, little-endian as both ends are. The daemon tells a frame's size by its command: a sender
// sends the first 12, 16 or 20 bytes (JVNControlFrameSize), a reply has 12. Always value-initialised, so that bytes
// which carry nothing are zero.
struct JVNControlFrame {
    static constexpr std::size_t baseSize = 12;
    static constexpr std::size_t colorSize = 16;
    static constexpr std::size_t fullSize = 20;
    static constexpr std::size_t addressSize = 6;

    JVNControlCommand command = JVNControlCommand::Disconnect;
    std::uint32_t controllerType = 0; // in a reply to QueryConnection: the connection's state
    std::uint8_t flag = 0;
    std::uint8_t unused[3] = {};
    std::uint8_t payload[8] = {}; // Connect: the 6 address bytes; SetLEDColor: red, green, blue
};

// How many bytes of a frame travel with this command: both sides go by it. 0 for what nobody asks a daemon.
constexpr std::size_t JVNControlFrameSize(JVNControlCommand command) {
    switch (command) {
    case JVNControlCommand::Disconnect:
    case JVNControlCommand::QueryConnection:
    case JVNControlCommand::EndSession:
        return JVNControlFrame::baseSize;
    case JVNControlCommand::SetLEDColor:
        return JVNControlFrame::colorSize;
    case JVNControlCommand::Connect:
    case JVNControlCommand::RestartDaemons:
        return JVNControlFrame::fullSize;
    case JVNControlCommand::ConnectAccepted:
    case JVNControlCommand::ConnectRefused:
        break;
    }
    return 0;
}

static_assert(std::endian::native == std::endian::little);
static_assert(std::is_trivially_copyable_v<JVNControlFrame> && std::is_standard_layout_v<JVNControlFrame>);
static_assert(offsetof(JVNControlFrame, command) == 0);
static_assert(offsetof(JVNControlFrame, controllerType) == 4);
static_assert(offsetof(JVNControlFrame, flag) == 8);
static_assert(offsetof(JVNControlFrame, payload) == JVNControlFrame::baseSize);
static_assert(sizeof(JVNControlFrame) == JVNControlFrame::fullSize);
