#pragma once

// The frames of the control socket as the daemon's side sees them.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace simulator {

using Bytes = std::vector<std::uint8_t>;

enum class Command : std::uint32_t {
    Disconnect = 0,
    Connect = 1,
    RestartDaemons = 3,
    SetLEDColor = 4,
    QueryConnection = 5,
    EndSession = 6,
};

inline constexpr std::size_t replySize = 12;
inline constexpr std::uint32_t connectAccepted = 8;
inline constexpr std::uint32_t connectRefused = 9;
inline constexpr std::uint32_t stateUnknown = 7;
inline constexpr std::uint32_t stateConnected = 1;

// The little-endian word at a place of the frame.
std::uint32_t word(std::span<const std::uint8_t> bytes, std::size_t at);

// How long the frame is that begins with this command; nullopt for a command that there is not.
std::optional<std::size_t> frameSize(std::uint32_t command);

// "Connect, DualShock 4, with an address": what a whole frame says. Addresses are not repeated.
std::string describeFrame(std::span<const std::uint8_t> frame);
std::string describeReply(Command asked, std::span<const std::uint8_t> reply);

Bytes makeReply(std::uint32_t first, std::uint32_t second);

// "01 00 ff".
std::string hex(std::span<const std::uint8_t> bytes);

} // namespace simulator
