#include "services/jvninputd/VirtualDevice.h"

#include <gtest/gtest.h>
#include <libevdev/libevdev.h>
#include <linux/input-event-codes.h>

using namespace jvninputd;

namespace {

// What is declared, as the kernel is asked to make it; without a kernel that makes it.

TEST(VirtualDevices, APadHasTheAxesAndButtonsOfItsProfileAndNoOthers) {
    for (const auto profile : {input::Profile::plain, input::Profile::extended}) {
        const Evdev pad = describePad(profile);
        int axes = 0;
        for (unsigned axis = 0; axis < ABS_CNT; ++axis) axes += ::libevdev_has_event_code(pad.get(), EV_ABS, axis);
        EXPECT_EQ(static_cast<std::size_t>(axes), padAxes(profile).size());
        for (const PadAxis& axis : padAxes(profile)) {
            ASSERT_TRUE(::libevdev_has_event_code(pad.get(), EV_ABS, axis.code)) << axis.code;
            EXPECT_EQ(::libevdev_get_abs_minimum(pad.get(), axis.code), axis.minimum);
            EXPECT_EQ(::libevdev_get_abs_maximum(pad.get(), axis.code), axis.maximum);
        }
        int buttons = 0;
        for (unsigned key = 0; key < KEY_CNT; ++key) buttons += ::libevdev_has_event_code(pad.get(), EV_KEY, key);
        EXPECT_EQ(static_cast<std::size_t>(buttons), padButtons(profile).size());
        for (const auto button : padButtons(profile))
            EXPECT_TRUE(::libevdev_has_event_code(pad.get(), EV_KEY, button)) << button;
    }
}

TEST(VirtualDevices, APlainPadHasAMainStickWithoutWhichGamesDoNotTakeItForAPad) {
    const Evdev pad = describePad(input::Profile::plain);
    for (const unsigned axis : {ABS_X, ABS_Y}) {
        EXPECT_TRUE(::libevdev_has_event_code(pad.get(), EV_ABS, axis));
        EXPECT_EQ(::libevdev_get_abs_minimum(pad.get(), axis), -32768);
        EXPECT_EQ(::libevdev_get_abs_maximum(pad.get(), axis), 32767);
    }
}

} // namespace
