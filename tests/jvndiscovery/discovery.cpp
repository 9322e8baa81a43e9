#include "services/jvndiscovery/Discovery.h"

#include "tests/bluetooth/bluetooth_test.h"

#include <optional>

using jvndiscovery::Discovery;
using jvndiscovery::Outcome;
using jvndiscovery::State;

namespace {

using testing_support::MockDevice;

class DiscoveryTest : public BluetoothTest {
protected:
    void begin() {
        client = bluetooth::makeSystemClient(loop);
        discovery.emplace(
            loop, *client,
            Discovery::Surroundings{[this](State state) { told += static_cast<char>('0' + static_cast<int>(state)); },
                                    [this](const Address& address) {
                                        stored.push_back(address);
                                        return canStore;
                                    },
                                    [this](Outcome outcome) { outcomes.push_back(outcome); }});
    }
    bool searches() {
        return loop.runUntil([&] { return service.isSearching(); });
    }
    // Until it has ended.
    std::optional<Outcome> outcome() {
        loop.runUntil([&] { return !outcomes.empty(); });
        return outcomes.empty() ? std::nullopt : std::optional(outcomes.back());
    }
    // What the service keeps of a tool that has ended.
    void expectNothingLeft() {
        EXPECT_FALSE(service.isSearching());
        EXPECT_FALSE(service.hasAgent());
        EXPECT_FALSE(service.isPairing());
    }
    long count(const std::string& call) const { return std::count(service.calls.begin(), service.calls.end(), call); }

    std::string told; // the states, one digit each
    std::vector<Address> stored;
    bool canStore = true;
    std::vector<Outcome> outcomes;
    std::optional<Discovery> discovery;
};

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

TEST_F(DiscoveryTest, APairedControllerThatDoesNotCallIsLeftAlone) {
    service.addAdapter();
    service.addDevice({.address = pad, .isDiscoverable = false, .isPaired = true, .isConnected = true});
    begin();
    ASSERT_TRUE(searches());
    loop.runUntil([] { return false; }, 50ms);

    EXPECT_EQ(service.calls, std::vector<std::string>{"StartDiscovery hci0"});
}

TEST_F(DiscoveryTest, AControllerThatDoesNotConnectNowIsPairedAllTheSame) {
    service.addAdapter();
    service.addDevice({.address = pad});
    service.fail("Connect", "org.bluez.Error.NotAvailable", "br-connection-profile-unavailable");
    begin();

    EXPECT_EQ(outcome(), Outcome::Paired);

    EXPECT_EQ(told, "402");
    EXPECT_EQ(log.size(), 1U);
}

TEST_F(DiscoveryTest, AConnectionThatIsNotAnsweredIsNotWaitedForForEver) {
    service.addAdapter();
    service.addDevice({.address = pad});
    service.stall("Connect");
    begin();
    ASSERT_TRUE(waitForCall("Connect 00:01"));

    clock.advance(loop, 40s);

    EXPECT_EQ(outcome(), Outcome::Paired);
}

TEST_F(DiscoveryTest, APairingThatIsNotAnsweredIsGivenUp) {
    service.addAdapter();
    service.addDevice({.address = pad});
    service.stall("Pair");
    begin();
    ASSERT_TRUE(waitForCall("Pair 00:01"));

    clock.advance(loop, 46s);

    EXPECT_TRUE(loop.runUntil([&] { return told == "400" && service.isSearching(); }));
    EXPECT_TRUE(called("CancelPairing 00:01"));
}

TEST_F(DiscoveryTest, AnAddressThatCannotBeStoredIsNoSuccess) {
    service.addAdapter();
    service.addDevice({.address = pad});
    canStore = false;
    begin();

    EXPECT_TRUE(loop.runUntil([&] { return told == "400" && service.isSearching(); }));
    EXPECT_TRUE(waitForCall("RemoveDevice 00:01"));

    EXPECT_TRUE(outcomes.empty());
    EXPECT_FALSE(service.device(pad).isPaired);
}

TEST_F(DiscoveryTest, AServiceThatIsRestartedIsSearchedWithAgain) {
    service.addAdapter();
    begin();
    ASSERT_TRUE(searches());

    service.vanish();
    ASSERT_TRUE(loop.runUntil([&] { return client->adapterState() == AdapterState::Absent; }));
    clock.advance(loop, 1s);
    service.start();
    service.addDevice({.address = pad});

    EXPECT_TRUE(passTime([&] { return !outcomes.empty(); }));
    EXPECT_EQ(outcome(), Outcome::Paired);
    EXPECT_EQ(told, "4002");
}

TEST_F(DiscoveryTest, AServiceThatIsRestartedInTheMiddleOfAPairingIsPairedWithAgain) {
    service.addAdapter();
    service.addDevice({.address = pad});
    service.stall("Pair");
    begin();
    ASSERT_TRUE(waitForCall("Pair 00:01"));

    service.vanish();
    service.behave("Pair");
    service.start();

    EXPECT_TRUE(passTime([&] { return !outcomes.empty(); }));
    EXPECT_EQ(outcome(), Outcome::Paired);
}

TEST_F(DiscoveryTest, AnAdapterThatIsPulledOutAndStaysOutIsNone) {
    service.addAdapter();
    begin();
    ASSERT_TRUE(searches());

    service.removeAdapter("hci0");

    EXPECT_TRUE(passTime([&] { return !outcomes.empty(); }));
    EXPECT_EQ(outcome(), Outcome::NoBluetooth);
    EXPECT_EQ(told, "403");
}

TEST_F(DiscoveryTest, AControllerThatVanishesInTheMiddleIsSearchedForAgain) {
    service.addAdapter();
    service.addDevice({.address = pad});
    service.stall("Pair");
    begin();
    ASSERT_TRUE(waitForCall("Pair 00:01"));

    service.removeDevice(pad);

    EXPECT_TRUE(loop.runUntil([&] { return told == "400" && service.isSearching(); }));
}

// At each question to the service, also while it does not answer it.
TEST_F(DiscoveryTest, AnInterruptionAtAnyMomentLeavesNothingBehind) {
    const std::vector<std::string> moments{"GetManagedObjects", "Set Powered",     "StartDiscovery",
                                           "StopDiscovery",     "RegisterAgent",   "Pair",
                                           "Set Trusted",       "Set WakeAllowed", "Connect"};
    for (const auto& moment : moments) {
        for (const bool isStalled : {false, true}) {
            testing_support::MockBluetoothService* const mock = &service;
            service.removeAdapter("hci0");
            service.addAdapter("hci0", false);
            service.addDevice({.address = pad});
            outcomes.clear();
            told.clear();
            service.calls.clear();
            if (isStalled) service.stall(moment);
            bool isThere = false;
            mock->arrived = [&](const std::string& member) { isThere = isThere || member == moment; };
            begin();
            ASSERT_TRUE(loop.runUntil([&] { return isThere; })) << moment;

            discovery->interrupt();
            if (!loop.runUntil([&] { return !outcomes.empty(); }, 100ms)) clock.advance(loop, 400ms);
            EXPECT_EQ(outcome(), Outcome::Interrupted) << moment;

            discovery.reset();
            client.reset();
            service.behave(moment);
            loop.runUntil([&] { return !service.isSearching() && !service.hasAgent() && !service.isPairing(); }, 2s);
            expectNothingLeft();
            EXPECT_FALSE(service.device(pad).isPaired) << moment;
            EXPECT_EQ(told.find('2'), std::string::npos) << moment;
            service.removeDevice(pad);
        }
    }
}

TEST_F(DiscoveryTest, AnInterruptionAfterTheStoreKeepsThePairing) {
    service.addAdapter();
    service.addDevice({.address = pad});
    service.stall("UnregisterAgent");
    begin();
    ASSERT_TRUE(loop.runUntil([&] { return !stored.empty(); }));

    discovery->interrupt();
    clock.advance(loop, 400ms);

    EXPECT_EQ(outcome(), Outcome::Paired);
    EXPECT_TRUE(service.device(pad).isPaired);
    EXPECT_FALSE(called("RemoveDevice 00:01"));
}

TEST_F(DiscoveryTest, AServiceThatHangsDoesNotHoldTheEndUp) {
    service.addAdapter();
    service.stall("StopDiscovery");
    begin();
    ASSERT_TRUE(searches());

    discovery->interrupt();
    clock.advance(loop, 400ms);

    EXPECT_EQ(outcomes, std::vector{Outcome::Interrupted});
}

} // namespace
