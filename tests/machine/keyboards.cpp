#include <gtest/gtest.h>

#include "tests/machine/support/EventReader.h"
#include "tests/machine/support/VirtualKeyboard.h"
#include "tests/machine/support/device_nodes.h"

namespace machine {
namespace {

TEST(Keyboards, APressedKeyIsReadFromTheDevicesNode) {
    VirtualKeyboard keyboard(DeviceDescription::withLamps());
    EventReader reader(keyboard.node());

    keyboard.press(KEY_W);

    EXPECT_EQ(reader.nextText(), "EV_KEY 17 1");
    EXPECT_TRUE(reader.isDown(KEY_W));
    keyboard.release(KEY_W);
    EXPECT_EQ(reader.nextText(), "EV_KEY 17 0");
    EXPECT_EQ(reader.keysDown(), 0);
}

TEST(Keyboards, UdevSaysThatItIsAKeyboard) {
    const VirtualKeyboard keyboard;

    EXPECT_EQ(udevProperty(keyboard.node(), "ID_INPUT_KEYBOARD"), "1");
}

TEST(Keyboards, UdevDoesNotTakeAMouseForAKeyboard) {
    const VirtualKeyboard mouse({.name = "Test Mouse", .keys = {BTN_LEFT, BTN_RIGHT}, .relativeAxes = {REL_X, REL_Y}});

    EXPECT_EQ(udevProperty(mouse.node(), "ID_INPUT_MOUSE"), "1");
    EXPECT_EQ(udevProperty(mouse.node(), "ID_INPUT_KEYBOARD"), std::nullopt);
}

TEST(Keyboards, AnUnpluggedOneIsGoneForItsReaders) {
    VirtualKeyboard keyboard({.name = "Unplugged Keyboard"});
    EventReader reader(keyboard.node());

    keyboard.unplug();

    EXPECT_EQ(reader.nextText(), "nothing");
    EXPECT_TRUE(reader.gone());
    EXPECT_TRUE(waitForNoEventNode("Unplugged Keyboard"));
}

TEST(Keyboards, WhatOneReaderGrabsNoOtherHears) {
    VirtualKeyboard keyboard;
    EventReader greedy(keyboard.node());
    EventReader other(keyboard.node());
    EXPECT_FALSE(other.grabbedByOthers());

    ASSERT_TRUE(greedy.grab());
    EXPECT_TRUE(other.grabbedByOthers());
    keyboard.tap(KEY_A);
    EXPECT_TRUE(greedy.waitFor(EV_KEY, KEY_A, 0));
    greedy.release();
    keyboard.tap(KEY_B);

    EXPECT_EQ(other.nextText(), "EV_KEY 48 1");
}

} // namespace
} // namespace machine
