#include "tests/jvndiscovery/DiscoveryTest.h"

namespace {

TEST_F(DiscoveryTest, PairsTrustsConnectsStoresAndTellsInThisOrder) {
    service.addAdapter();
    service.addDevice({.address = pad});
    begin();

    EXPECT_EQ(outcome(), Outcome::Paired);

    EXPECT_EQ(told, "402");
    EXPECT_EQ(stored, std::vector{padAddress});
    EXPECT_EQ(service.calls,
              (std::vector<std::string>{"StartDiscovery hci0", "StopDiscovery hci0", "RegisterAgent NoInputNoOutput",
                                        "Pair 00:01", "Set Trusted 00:01", "Set WakeAllowed 00:01", "Connect 00:01",
                                        "UnregisterAgent"}));
    expectNothingLeft();
    EXPECT_TRUE(service.device(pad).isPaired && service.device(pad).isTrusted && service.device(pad).isConnected);
}

TEST_F(DiscoveryTest, SwitchesBluetoothOn) {
    service.addAdapter("hci0", false);
    service.addDevice({.address = pad});
    begin();

    EXPECT_EQ(outcome(), Outcome::Paired);

    EXPECT_EQ(told, "402");
}

TEST_F(DiscoveryTest, WithoutAnAdapterItSaysSoAndEnds) {
    begin();
    loop.runUntil([] { return false; }, 50ms);
    clock.advance(loop, 10s);

    EXPECT_EQ(outcome(), Outcome::NoBluetooth);

    EXPECT_EQ(told, "3");
}

TEST_F(DiscoveryTest, ABlockedAdapterIsNone) {
    service.addAdapter("hci0", false);
    service.fail("Set Powered", "org.bluez.Error.Blocked", "Blocked through rfkill");
    begin();

    EXPECT_EQ(outcome(), Outcome::NoBluetooth);

    EXPECT_EQ(told, "3");
}

TEST_F(DiscoveryTest, SearchesUntilAControllerComes) {
    service.addAdapter();
    begin();
    ASSERT_TRUE(searches());
    loop.runUntil([] { return false; }, 50ms);
    clock.advance(loop, 3600s);
    EXPECT_EQ(told, "40");

    service.addDevice({.address = pad});

    EXPECT_EQ(outcome(), Outcome::Paired);
}

TEST_F(DiscoveryTest, WhatIsNoGamepadIsLeftAlone) {
    service.addAdapter();
    service.addDevice({.address = "00:AA:01:01:00:07", .classOfDevice = 0x002540});
    begin();
    ASSERT_TRUE(searches());
    loop.runUntil([] { return false; }, 50ms);

    EXPECT_EQ(service.calls, std::vector<std::string>{"StartDiscovery hci0"});
    EXPECT_EQ(told, "40");
}

TEST_F(DiscoveryTest, APinIsRefusedAndTheSearchGoesOn) {
    service.addAdapter();
    service.addDevice({.address = pad, .wantsPin = true});
    begin();

    EXPECT_TRUE(loop.runUntil([&] { return told == "400" && service.isSearching(); }));
    EXPECT_TRUE(loop.runUntil([&] { return count("RemoveDevice 00:01") == 1; }));

    EXPECT_EQ(service.agentAnswers, std::vector<std::string>{"org.bluez.Error.Rejected"});
    EXPECT_EQ(log, std::vector<std::string>{"pairing with ..:00:01: refused, since it asks for a PIN"});
    EXPECT_TRUE(stored.empty());
}

TEST_F(DiscoveryTest, AControllerThatFailedIsTriedAgainLater) {
    service.addAdapter();
    service.addDevice({.address = pad, .wantsPin = true});
    begin();
    ASSERT_TRUE(loop.runUntil([&] { return told == "400" && service.isSearching(); }));
    loop.runUntil([] { return false; }, 50ms);
    ASSERT_EQ(count("Pair 00:01"), 1);

    service.device(pad).wantsPin = false;
    clock.advance(loop, 11s);

    EXPECT_EQ(outcome(), Outcome::Paired);
    EXPECT_EQ(told, "4002");
}

TEST_F(DiscoveryTest, AnotherControllerGetsItsTurnAtOnce) {
    service.addAdapter();
    service.addDevice({.address = pad, .wantsPin = true});
    begin();
    ASSERT_TRUE(loop.runUntil([&] { return told == "400" && service.isSearching(); }));

    service.addDevice({.address = "00:AA:01:01:00:02"});

    EXPECT_EQ(outcome(), Outcome::Paired);
    EXPECT_EQ(stored, std::vector{*Address::fromText("00:AA:01:01:00:02")});
}

TEST_F(DiscoveryTest, AControllerThatLostItsBondIsRemovedAndPairedAnew) {
    service.addAdapter();
    service.addDevice({.address = pad, .hasForgotten = true, .isPaired = true, .isTrusted = true});
    begin();
    EXPECT_TRUE(loop.runUntil([&] { return count("RemoveDevice 00:01") == 1; }));

    // The service finds it anew.
    ASSERT_TRUE(loop.runUntil([&] { return !client->device(padAddress); }));
    service.appear(pad);

    EXPECT_EQ(outcome(), Outcome::Paired);
    EXPECT_EQ(told, "402");
    EXPECT_TRUE(service.device(pad).isPaired);
}

TEST_F(DiscoveryTest, ALostBondThatCannotBeRemovedIsTriedAgainLater) {
    service.addAdapter();
    service.addDevice({.address = pad, .hasForgotten = true, .isPaired = true});
    service.fail("RemoveDevice", "org.bluez.Error.Failed");
    begin();
    ASSERT_TRUE(loop.runUntil([&] { return count("RemoveDevice 00:01") == 1; }));
    loop.runUntil([] { return false; }, 50ms);

    service.behave("RemoveDevice");
    clock.advance(loop, 11s);

    EXPECT_TRUE(loop.runUntil([&] { return count("RemoveDevice 00:01") == 2 && !service.device(pad).isPaired; }));
}

// It calls out whenever it is on, and need not have forgotten anything.
TEST_F(DiscoveryTest, APairedControllerOfTheLowEnergyRadioIsNotTakenForOneThatLostItsBond) {
    service.addAdapter();
    service.addDevice({.address = pad, .classOfDevice = 0, .appearance = 0x03c4, .isPaired = true});
    begin();
    ASSERT_TRUE(loop.runUntil([&] { return client->device(padAddress) && client->device(padAddress)->isHeard; }));
    loop.runUntil([] { return false; }, 50ms);

    EXPECT_EQ(service.calls, std::vector<std::string>{"StartDiscovery hci0"});
}

// Another program has searched, or it was there a minute ago.
TEST_F(DiscoveryTest, AControllerThatTheServiceKnowsAndThatIsNotHeardIsLeftAlone) {
    service.addAdapter();
    service.addDevice({.address = pad, .isDiscoverable = false, .isKnown = true});
    begin();
    ASSERT_TRUE(searches());
    service.device(pad).name = "what another program calls it";
    service.changed(pad);
    loop.runUntil([] { return false; }, 50ms);

    EXPECT_EQ(service.calls, std::vector<std::string>{"StartDiscovery hci0"});
}

TEST_F(DiscoveryTest, APairedControllerThatDoesNotCallIsLeftAlone) {
    service.addAdapter();
    service.addDevice({.address = pad, .isDiscoverable = false, .isPaired = true, .isConnected = true});
    begin();
    ASSERT_TRUE(searches());
    loop.runUntil([] { return false; }, 50ms);

    EXPECT_EQ(service.calls, std::vector<std::string>{"StartDiscovery hci0"});
}

} // namespace
