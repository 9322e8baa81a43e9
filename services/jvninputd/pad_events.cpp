#include "services/jvninputd/pad_events.h"

#include <linux/input-event-codes.h>

namespace jvninputd {

namespace {

// The inputs of an axis and its place at each of them; it rests at 0.
struct AxisRow {
    std::uint16_t code;
    native::Code low; // none for a trigger
    native::Code high;
    std::int32_t minimum;
    std::int32_t maximum;
};

constexpr std::int32_t stickLow = -32768;
constexpr std::int32_t stickHigh = 32767;

constexpr std::array<AxisRow, 8> axisRows{{
    {ABS_HAT0X, native::dpadLeft, native::dpadRight, -1, 1},
    {ABS_HAT0Y, native::dpadUp, native::dpadDown, -1, 1},
    {ABS_X, native::leftStickLeft, native::leftStickRight, stickLow, stickHigh},
    {ABS_Y, native::leftStickUp, native::leftStickDown, stickLow, stickHigh},
    {ABS_RX, native::rightStickLeft, native::rightStickRight, stickLow, stickHigh},
    {ABS_RY, native::rightStickUp, native::rightStickDown, stickLow, stickHigh},
    {ABS_Z, native::none, native::leftTrigger, 0, 255},
    {ABS_RZ, native::none, native::rightTrigger, 0, 255},
}};
// The widely used game library takes nothing for a gamepad that lacks the main stick: the plain profile has it too,
// at rest.
constexpr std::size_t plainAxes = 4;

struct ButtonRow {
    std::uint16_t code;
    native::Code input;
};

// X and Y by the letters on them, which is how games read a pad that they do not know, not by their places.
constexpr std::array<ButtonRow, 9> buttonRows{{
    {BTN_A, native::a},
    {BTN_B, native::b},
    {BTN_X, native::x},
    {BTN_Y, native::y},
    {BTN_TL, native::leftShoulder},
    {BTN_TR, native::rightShoulder},
    {BTN_START, native::pause},
    {BTN_TL2, native::leftTrigger},
    {BTN_TR2, native::rightTrigger},
}};
constexpr std::size_t plainButtons = 7;

constexpr auto axes = [] {
    std::array<PadAxis, axisRows.size()> table{};
    for (std::size_t i = 0; i < table.size(); ++i)
        table[i] = {axisRows[i].code, axisRows[i].minimum, axisRows[i].maximum};
    return table;
}();

constexpr auto buttons = [] {
    std::array<std::uint16_t, buttonRows.size()> table{};
    for (std::size_t i = 0; i < table.size(); ++i) table[i] = buttonRows[i].code;
    return table;
}();

std::int32_t place(const AxisRow& axis, InputSet inputs) {
    if (inputs & bitOf(axis.high)) return axis.maximum;
    if (axis.low != native::none && inputs & bitOf(axis.low)) return axis.minimum;
    return 0;
}

} // namespace

std::span<const PadAxis> padAxes(input::Profile profile) {
    const std::span<const PadAxis> all = axes;
    return profile == input::Profile::extended ? all : all.first(plainAxes);
}

std::span<const std::uint16_t> padButtons(input::Profile profile) {
    const std::span<const std::uint16_t> all = buttons;
    return profile == input::Profile::extended ? all : all.first(plainButtons);
}

InputSet padInputs(input::Profile profile) {
    constexpr InputSet all = bitOf(native::end) - 2;
    constexpr InputSet onlyExtended = bitOf(native::pause) - bitOf(native::leftStickRight);
    switch (profile) {
    case input::Profile::extended:
        return all;
    case input::Profile::plain:
        return all & ~onlyExtended;
    case input::Profile::none:
        break;
    }
    return 0;
}

void appendPadEvents(InputSet before, InputSet after, std::vector<Event>& events) {
    if (before == after) return;
    for (const ButtonRow& button : buttonRows)
        if ((before ^ after) & bitOf(button.input))
            events.push_back({EV_KEY, button.code, after & bitOf(button.input) ? 1 : 0});
    for (const AxisRow& axis : axisRows)
        if (place(axis, before) != place(axis, after)) events.push_back({EV_ABS, axis.code, place(axis, after)});
}

} // namespace jvninputd
