#pragma once

#include "services/input_protocol/messages.h"

#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>

// What jvnd knows of how things are, for whoever shows it to the user: a line of text in a file of the root that jvnd
// replaces whenever something of it changes. While it runs it holds a lock on the file (flock, exclusive); one without
// a lock was left by a daemon that is no more.

namespace daemon_status {

// In the root.
inline constexpr const char* filePath = "/Library/Caches/jvnd.status";

enum class Bluetooth : std::uint8_t { unknown = 0, absent = 1, blocked = 2, off = 3, on = 4 };

// Whether jvninputd takes part.
enum class InputService : std::uint8_t { unknown = 0, unreachable = 1, connected = 2 };

struct Status {
    Bluetooth bluetooth = Bluetooth::unknown;
    bool isKeyboardChosen = false;
    InputService inputService = InputService::unknown;         // asked only while something is chosen that needs it
    input::Readiness readiness = input::Readiness::ungoverned; // while it is connected
    std::uint8_t keyboards = 0;                                // likewise
    friend bool operator==(const Status&, const Status&) = default;
};

inline std::string textOf(const Status& status) {
    char text[96];
    const int size = std::snprintf(text, sizeof text, "1 bluetooth %u keyboard %u input %u readiness %u keyboards %u\n",
                                   static_cast<unsigned>(status.bluetooth), status.isKeyboardChosen ? 1u : 0u,
                                   static_cast<unsigned>(status.inputService), static_cast<unsigned>(status.readiness),
                                   static_cast<unsigned>(status.keyboards));
    return {text, static_cast<std::size_t>(size)};
}

// Nothing for a text of another version, or with a value that is not listed.
inline std::optional<Status> statusOf(const std::string& text) {
    unsigned bluetooth = 0, isChosen = 0, service = 0, readiness = 0, keyboards = 0;
    char end = 0;
    if (std::sscanf(text.c_str(), "1 bluetooth %3u keyboard %3u input %3u readiness %3u keyboards %3u%c", &bluetooth,
                    &isChosen, &service, &readiness, &keyboards, &end) != 6 ||
        end != '\n')
        return std::nullopt;
    if (bluetooth > 4 || isChosen > 1 || service > 2 || keyboards > 255 ||
        readiness > static_cast<unsigned>(input::Readiness::playing))
        return std::nullopt;
    return Status{static_cast<Bluetooth>(bluetooth), isChosen == 1, static_cast<InputService>(service),
                  static_cast<input::Readiness>(readiness), static_cast<std::uint8_t>(keyboards)};
}

} // namespace daemon_status
