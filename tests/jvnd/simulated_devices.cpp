#include "services/jvnd/SimulatedDevices.h"

#include "tests/jvnd/FakeBluetooth.h"

#include <gtest/gtest.h>

using namespace jvnd;
using testing_support::firstAddress;
using testing_support::secondAddress;

namespace {

class SimulatedDevicesTest : public ::testing::Test {
protected:
    static input::Light light(std::uint8_t red, const bluetooth::Address& address = firstAddress) {
        auto message = input::makeMessage<input::Light>();
        message.action = input::LightAction::set;
        std::ranges::copy(address.bytes, message.address);
        message.red = red;
        return message;
    }

    testing_support::FakeBluetooth bluetooth;
    std::string said;
    SimulatedDevices devices{bluetooth, [this](const std::string& line) { said += line + "\n"; }};
};

TEST_F(SimulatedDevicesTest, TheLightArrivesAtTheControllerThatIsThere) {
    devices.setLight(light(0x12));
    bluetooth.set(secondAddress, /*isConnected=*/true);
    devices.controllersChanged();
    EXPECT_EQ(said, "");

    bluetooth.set(firstAddress, /*isConnected=*/true);
    devices.controllersChanged();
    devices.controllersChanged();
    EXPECT_EQ(said, "light of " + firstAddress.forLog() + " shows 120000\n");
    EXPECT_EQ(devices.controllers()->size(), 2u);
}

TEST_F(SimulatedDevicesTest, AControllerThatComesBackIsLitAgain) {
    bluetooth.set(firstAddress, /*isConnected=*/true);
    devices.setLight(light(0xFF));
    said.clear();
    bluetooth.set(firstAddress, /*isConnected=*/false);
    devices.controllersChanged();
    EXPECT_EQ(said, "");
    bluetooth.set(firstAddress, /*isConnected=*/true);
    devices.controllersChanged();
    EXPECT_EQ(said, "light of " + firstAddress.forLog() + " shows ff0000\n");
}

TEST_F(SimulatedDevicesTest, AmbientLightIsTheGames) {
    bluetooth.set(firstAddress, /*isConnected=*/true);
    devices.setLight(input::makeMessage<input::Light>());
    EXPECT_EQ(said, "");
}

TEST_F(SimulatedDevicesTest, WhatTheKeyboardDoesIsSaidWhenItChanges) {
    auto settings = input::makeMessage<input::Settings>();
    devices.setKeyboard(settings);
    settings.keyboardPlays = 1;
    settings.bindingCount = 2;
    settings.bindings[1].nativeCode = 10;
    devices.setKeyboard(settings);
    devices.setKeyboard(settings);
    settings.mode = input::PlayMode::byHand;
    settings.bindings[1].nativeCode = 11;
    devices.setKeyboard(settings);
    EXPECT_EQ(said, "keyboard does not play\n"
                    "keyboard plays while a game listens, 2 keys, plain profile\n"
                    "keyboard plays by hand, 2 keys, extended profile\n");
}

} // namespace
