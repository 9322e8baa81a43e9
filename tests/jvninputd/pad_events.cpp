#include "services/jvninputd/pad_events.h"

#include "tests/jvninputd/FakeDevices.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <linux/input-event-codes.h>

using namespace jvninputd;
using jvninputd::fakes::text;

namespace {

struct Shown {
    native::Code input;
    std::vector<Event> down;
};

const std::vector<Shown>& everyInput() {
    static const std::vector<Shown> table{
        {native::dpadRight, {{EV_ABS, ABS_HAT0X, 1}}},
        {native::dpadLeft, {{EV_ABS, ABS_HAT0X, -1}}},
        {native::dpadUp, {{EV_ABS, ABS_HAT0Y, -1}}},
        {native::dpadDown, {{EV_ABS, ABS_HAT0Y, 1}}},
        {native::a, {{EV_KEY, 0x130, 1}}},
        {native::b, {{EV_KEY, 0x131, 1}}},
        {native::x, {{EV_KEY, 0x133, 1}}},
        {native::y, {{EV_KEY, 0x134, 1}}},
        {native::leftShoulder, {{EV_KEY, 0x136, 1}}},
        {native::rightShoulder, {{EV_KEY, 0x137, 1}}},
        {native::leftStickRight, {{EV_ABS, ABS_X, 32767}}},
        {native::leftStickLeft, {{EV_ABS, ABS_X, -32768}}},
        {native::leftStickUp, {{EV_ABS, ABS_Y, -32768}}},
        {native::leftStickDown, {{EV_ABS, ABS_Y, 32767}}},
        {native::rightStickRight, {{EV_ABS, ABS_RX, 32767}}},
        {native::rightStickLeft, {{EV_ABS, ABS_RX, -32768}}},
        {native::rightStickUp, {{EV_ABS, ABS_RY, -32768}}},
        {native::rightStickDown, {{EV_ABS, ABS_RY, 32767}}},
        {native::leftTrigger, {{EV_KEY, 0x138, 1}, {EV_ABS, ABS_Z, 255}}},
        {native::rightTrigger, {{EV_KEY, 0x139, 1}, {EV_ABS, ABS_RZ, 255}}},
        {native::pause, {{EV_KEY, 0x13b, 1}}},
    };
    return table;
}

std::vector<Event> events(InputSet before, InputSet after) {
    std::vector<Event> list;
    appendPadEvents(before, after, list);
    return list;
}

TEST(PadEvents, EveryInputIsWhatTheKernelsConventionSays) {
    ASSERT_EQ(everyInput().size(), 21U);
    for (const auto& [input, down] : everyInput()) {
        EXPECT_EQ(text(events(0, bitOf(input))), text(down)) << input;
        std::vector<Event> up = down;
        for (Event& event : up) event.value = 0;
        EXPECT_EQ(text(events(bitOf(input), 0)), text(up)) << input;
    }
}

TEST(PadEvents, FromOneDirectionToItsOppositeIsOneEvent) {
    EXPECT_EQ(text(events(bitOf(native::dpadLeft), bitOf(native::dpadRight))), "3:16=1");
}

TEST(PadEvents, NothingChangedIsNoEvent) { EXPECT_EQ(text(events(bitOf(native::a), bitOf(native::a))), ""); }

TEST(PadEvents, TheExtendedProfileDeclaresWhatEveryInputNeeds) {
    EXPECT_EQ(padAxes(input::Profile::extended).size(), 8U);
    EXPECT_EQ(padButtons(input::Profile::extended).size(), 9U);
    EXPECT_EQ(padInputs(input::Profile::extended), (InputSet{1} << 22) - 2);
}

TEST(PadEvents, ThePlainProfileDeclaresItsInputsAndAStickAtRest) {
    const auto axes = padAxes(input::Profile::plain);
    EXPECT_EQ(std::ranges::count(axes, ABS_X, &PadAxis::code), 1);
    EXPECT_EQ(std::ranges::count(axes, ABS_RX, &PadAxis::code), 0);
    EXPECT_EQ(padInputs(input::Profile::plain), InputSet{0x7fe} | bitOf(native::pause));
    for (const auto& [input, down] : everyInput()) {
        if (!(padInputs(input::Profile::plain) & bitOf(input))) continue;
        for (const Event event : down)
            EXPECT_TRUE(event.type == EV_KEY ? std::ranges::count(padButtons(input::Profile::plain), event.code) == 1
                                             : std::ranges::count(axes, event.code, &PadAxis::code) == 1);
    }
}

TEST(PadEvents, SticksAndTriggersHaveTheirFullRange) {
    for (const PadAxis& axis : padAxes(input::Profile::extended)) {
        const bool stick = axis.code == ABS_X || axis.code == ABS_Y || axis.code == ABS_RX || axis.code == ABS_RY;
        const bool trigger = axis.code == ABS_Z || axis.code == ABS_RZ;
        EXPECT_EQ(axis.minimum, stick ? -32768 : trigger ? 0 : -1);
        EXPECT_EQ(axis.maximum, stick ? 32767 : trigger ? 255 : 1);
    }
}

} // namespace
