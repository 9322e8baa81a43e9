#include "tests/bluetooth/bluetooth_test.h"

namespace {

using testing_support::MockDevice;

TEST_F(BluetoothTest, KnowsNothingUntilTheServiceHasAnswered) {
    service.addAdapter();
    makeClient();
    EXPECT_EQ(client->adapterState(), AdapterState::Unknown);

    EXPECT_TRUE(settle(AdapterState::On));

    EXPECT_EQ(states, std::vector{AdapterState::On});
}

TEST_F(BluetoothTest, AServiceThatIsNotThereIsAnAdapterThatIsNotThere) {
    service.vanish();
    makeClient();

    EXPECT_TRUE(settle(AdapterState::Absent));
}

TEST_F(BluetoothTest, AServiceThatHangsCountsAsAbsentAfterAMoment) {
    service.stall("GetManagedObjects");
    service.addAdapter();
    makeClient();
    loop.runUntil([&] { return states.size() == 1; }, 200ms);
    EXPECT_EQ(client->adapterState(), AdapterState::Unknown);

    clock.advance(loop, 3s);

    EXPECT_EQ(client->adapterState(), AdapterState::Absent);
}

TEST_F(BluetoothTest, AnAnswerThatIsNoneIsLoggedAndNoAdapter) {
    service.addAdapter();
    service.answerNonsense("GetManagedObjects");
    makeClient();

    EXPECT_TRUE(settle(AdapterState::Absent));
    EXPECT_EQ(log.size(), 1U);
}

TEST_F(BluetoothTest, FollowsAnAdapterThatComesIsSwitchedAndGoes) {
    makeClient();
    ASSERT_TRUE(settle(AdapterState::Absent));

    service.addAdapter("hci0", false);
    EXPECT_TRUE(settle(AdapterState::Off));
    service.setPowered("hci0", true);
    EXPECT_TRUE(settle(AdapterState::On));
    service.removeAdapter("hci0");
    EXPECT_TRUE(settle(AdapterState::Absent));
}

TEST_F(BluetoothTest, UsesTheAdapterThatIsOn) {
    service.addAdapter("hci0", false);
    service.addAdapter("hci10", true);
    makeClient();

    EXPECT_TRUE(settle(AdapterState::On));
}

TEST_F(BluetoothTest, ShowsWhatTheServiceSaysOfADevice) {
    service.addAdapter();
    MockDevice device{.address = pad, .isPaired = true, .isTrusted = true, .isConnected = true};
    device.battery = 70;
    service.addDevice(device);
    makeClient();
    ASSERT_TRUE(settle(AdapterState::On));

    const auto known = client->device(padAddress);

    ASSERT_TRUE(known);
    EXPECT_EQ(known->name, "Wireless Controller");
    EXPECT_TRUE(known->isGamepad && known->isPaired && known->isTrusted && known->isConnected);
    EXPECT_FALSE(known->mayWake || known->isHeard);
    EXPECT_EQ(known->batteryPercent, 70);
}

TEST_F(BluetoothTest, AGamepadIsOneByItsClass) {
    service.addAdapter();
    const std::pair<std::uint32_t, bool> classes[] = {
        {0x002508, true},  // gamepad
        {0x000504, true},  // joystick
        {0x002540, false}, // keyboard
        {0x5a020c, false}, // telephone
        {0, false},        // says nothing
    };
    for (std::size_t i = 0; i < std::size(classes); ++i)
        service.addDevice(
            {.address = "00:00:00:00:00:0" + std::to_string(i), .classOfDevice = classes[i].first, .isPaired = true});
    makeClient();
    ASSERT_TRUE(settle(AdapterState::On));

    for (std::size_t i = 0; i < std::size(classes); ++i) {
        const auto address = Address::fromText("00:00:00:00:00:0" + std::to_string(i));
        EXPECT_EQ(client->device(*address)->isGamepad, classes[i].second) << std::hex << classes[i].first;
    }
}

TEST_F(BluetoothTest, AGamepadIsOneByItsAppearanceOrByWhatTheServiceTakesItForToo) {
    service.addAdapter();
    service.addDevice({.address = "00:00:00:00:00:01", .classOfDevice = 0, .appearance = 0x03c3, .isPaired = true});
    service.addDevice({.address = "00:00:00:00:00:02", .classOfDevice = 0, .appearance = 0x03c4, .isPaired = true});
    service.addDevice({.address = "00:00:00:00:00:03", .classOfDevice = 0, .appearance = 0x03c1, .isPaired = true});
    service.addDevice({.address = "00:00:00:00:00:04", .classOfDevice = 0, .icon = "input-gaming", .isPaired = true});
    service.addDevice({.address = "00:00:00:00:00:05", .classOfDevice = 0, .icon = "input-mouse", .isPaired = true});
    makeClient();
    ASSERT_TRUE(settle(AdapterState::On));

    std::string gamepads;
    for (const auto& device : client->devices())
        if (device.isGamepad) gamepads += std::to_string(device.address.bytes[5]);

    EXPECT_EQ(gamepads, "124");
}

TEST_F(BluetoothTest, OfSeveralAdaptersThatAreOnTheFirstIsUsed) {
    for (const char* name : {"hci10", "hci2", "hci3"}) service.addAdapter(name);
    makeClient();
    ASSERT_TRUE(settle(AdapterState::On));

    const auto search = client->search(note());

    EXPECT_TRUE(loop.runUntil([&] { return !service.calls.empty(); }));
    EXPECT_EQ(service.calls.front(), "StartDiscovery hci2");
}

TEST_F(BluetoothTest, OfADeviceThatTwoAdaptersKnowTheConnectedOneCountsThenThePairedOneThenThatOfTheAdapterInUse) {
    service.addAdapter("hci2"); // in use
    service.addAdapter("hci10");
    const auto know = [this](const char* address, const char* adapter, MockDevice device) {
        device.address = address;
        device.adapter = adapter;
        device.isKnown = true;
        service.addDevice(std::move(device));
    };
    know("00:00:00:00:00:01", "hci2", {.name = "no", .isPaired = true});
    know("00:00:00:00:00:01", "hci10", {.name = "connected", .isConnected = true});
    know("00:00:00:00:00:02", "hci2", {.name = "no"});
    know("00:00:00:00:00:02", "hci10", {.name = "paired", .isPaired = true});
    know("00:00:00:00:00:03", "hci2", {.name = "in use", .isPaired = true});
    know("00:00:00:00:00:03", "hci10", {.name = "no", .isPaired = true});
    makeClient();
    ASSERT_TRUE(settle(AdapterState::On));

    std::vector<std::string> names;
    for (const auto& device : client->devices()) names.push_back(device.name);

    EXPECT_EQ(names, (std::vector<std::string>{"connected", "paired", "in use"}));
}

TEST_F(BluetoothTest, HearsOfADeviceThatConnectsByItself) {
    service.addAdapter();
    service.addDevice({.address = pad, .isPaired = true});
    makeClient();
    ASSERT_TRUE(settle(AdapterState::On));

    service.device(pad).isConnected = true;
    service.changed(pad);

    EXPECT_TRUE(loop.runUntil([&] { return !changes.empty() && changes.back().isConnected; }));
    EXPECT_EQ(changes.back().address, padAddress);
}

TEST_F(BluetoothTest, TellsOfNothingWhenNothingIsDifferent) {
    service.addAdapter();
    service.addDevice({.address = pad, .isPaired = true});
    makeClient();
    ASSERT_TRUE(settle(AdapterState::On));
    const auto before = changes.size();

    for (int i = 0; i < 100; ++i) service.changed(pad);
    service.device(pad).name = "last";
    service.changed(pad);

    EXPECT_TRUE(loop.runUntil([&] { return !changes.empty() && changes.back().name == "last"; }));
    EXPECT_EQ(changes.size(), before + 1);
}

TEST_F(BluetoothTest, WhatIsNotAsDocumentedIsPassedOver) {
    service.addAdapter();
    service.addDevice({.address = pad, .isPaired = true});
    makeClient();
    ASSERT_TRUE(settle(AdapterState::On));
    const auto before = client->device(padAddress);

    service.sendNonsense(pad);
    EXPECT_EQ(endOf(client->trust(padAddress, note())), Error::None); // all of it has been heard by then

    auto expected = *before;
    expected.isTrusted = expected.mayWake = true;
    EXPECT_EQ(client->device(padAddress), expected);
    EXPECT_EQ(client->devices().size(), 1U);
}

TEST_F(BluetoothTest, TheServicesEndTakesAllAwayAndItsReturnBringsItBack) {
    service.addAdapter();
    service.addDevice({.address = pad, .isPaired = true});
    makeClient();
    ASSERT_TRUE(settle(AdapterState::On));

    service.vanish();
    EXPECT_TRUE(settle(AdapterState::Absent));
    EXPECT_EQ(gone, std::vector{padAddress});
    EXPECT_TRUE(client->devices().empty());

    service.start();
    EXPECT_TRUE(settle(AdapterState::On));
    EXPECT_TRUE(client->device(padAddress));
}

TEST_F(BluetoothTest, SurvivesTheBusItself) {
    service.addAdapter();
    makeClient();
    ASSERT_TRUE(settle(AdapterState::On));

    service.vanish();
    bus.kill();
    EXPECT_TRUE(settle(AdapterState::Absent));
    clock.advance(loop, 2s);
    bus.start();
    service.start();

    EXPECT_TRUE(passTime([&] { return client->adapterState() == AdapterState::On; }));
}

TEST_F(BluetoothTest, ABusThatComesLaterIsEnough) {
    service.vanish();
    bus.kill();
    makeClient();
    clock.advance(loop, 3s);
    EXPECT_EQ(client->adapterState(), AdapterState::Absent);

    bus.start();
    service.start();
    service.addAdapter();

    EXPECT_TRUE(passTime([&] { return client->adapterState() == AdapterState::On; }));
}

} // namespace
