#pragma once

#include "services/input_protocol/messages.h"
#include "services/jvninputd/PadInputs.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace jvninputd {

// An event as the kernel's input devices have it, without its time.
struct Event {
    std::uint16_t type;
    std::uint16_t code;
    std::int32_t value;
    bool operator==(const Event&) const = default;
};

// An axis that a pad declares, and where it rests.
struct PadAxis {
    std::uint16_t code;
    std::int32_t minimum;
    std::int32_t maximum;
};

// What a pad of this profile (not none) declares, in the kernel's gamepad convention.
std::span<const PadAxis> padAxes(input::Profile profile);
std::span<const std::uint16_t> padButtons(input::Profile profile);

// The inputs that a pad of this profile can show.
InputSet padInputs(input::Profile profile);

// Appends what takes a pad from one set of inputs to another, without the event that ends the frame. Both sets have
// opposites settled.
void appendPadEvents(InputSet before, InputSet after, std::vector<Event>& events);

} // namespace jvninputd
