#include "services/jvnd/device_messages.h"

#include <gtest/gtest.h>

using namespace jvnd;

namespace {

Settings dualShock4() {
    Settings settings;
    settings.controllerType = JVNControllerTypeDualShock4;
    settings.address = bluetooth::Address{{0, 0xAA, 1, 1, 0, 1}};
    return settings;
}

TEST(DeviceMessages, TheKeyboardPlaysOnlyWhenItIsTheChosenController) {
    Settings settings;
    for (std::int64_t type = 0; type < 8; ++type) {
        settings.controllerType = type;
        EXPECT_EQ(keyboardMessage(settings).keyboardPlays, type == 6) << type;
    }
}

TEST(DeviceMessages, TheKeyboardIsToldItsModeItsProfileAndItsKeys) {
    Settings settings;
    settings.controllerType = JVNControllerTypeKeyboard;
    settings.connectionMode = 1;
    settings.forcesExtended = true;
    settings.keymap = {{4, 2}, {26, 3}};

    const auto message = keyboardMessage(settings);

    EXPECT_EQ(message.mode, input::PlayMode::byHand);
    EXPECT_EQ(message.forceExtended, 1);
    ASSERT_EQ(message.bindingCount, 2u);
    EXPECT_EQ(message.bindings[1].usage, 26);
    EXPECT_EQ(message.bindings[1].nativeCode, 3);
    settings.connectionMode = 2;
    EXPECT_EQ(keyboardMessage(settings).mode, input::PlayMode::whileListened) << "1 alone is by hand";
}

TEST(DeviceMessages, TheLightOfTheStoredControllerShowsTheStoredColor) {
    const auto message = lightMessage(dualShock4(), std::nullopt);

    EXPECT_EQ(message.action, input::LightAction::set);
    EXPECT_EQ(message.address[1], 0xAA);
    EXPECT_EQ(message.address[5], 1);
    EXPECT_EQ(message.green, 0x4E);
}

TEST(DeviceMessages, APickedColorComesBeforeTheStoredOne) {
    EXPECT_EQ(lightMessage(dualShock4(), Color{1, 2, 3}).green, 2);
}

TEST(DeviceMessages, WithoutAnAddressTheOneOnACableIsMeant) {
    auto settings = dualShock4();
    settings.address.reset();
    const auto message = lightMessage(settings, std::nullopt);
    EXPECT_EQ(message.action, input::LightAction::set);
    for (const auto byte : message.address) EXPECT_EQ(byte, 0);
}

TEST(DeviceMessages, AmbientLightAndOtherControllersAreLeftAlone) {
    auto settings = dualShock4();
    settings.isAmbient = true;
    EXPECT_EQ(lightMessage(settings, Color{1, 2, 3}).action, input::LightAction::leaveAlone);
    settings = dualShock4();
    settings.controllerType = 2;
    EXPECT_EQ(lightMessage(settings, Color{1, 2, 3}).action, input::LightAction::leaveAlone);
}

} // namespace
