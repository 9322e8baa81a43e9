// What goes wrong on the way, and what is interrupted.

#include "tests/jvndiscovery/DiscoveryTest.h"

namespace {

TEST_F(DiscoveryTest, AControllerThatDoesNotConnectNowIsPairedAllTheSame) {
    service.addAdapter();
    service.addDevice({.address = pad});
    service.fail("Connect", "org.bluez.Error.NotAvailable", "br-connection-profile-unavailable");
    begin();

    EXPECT_EQ(outcome(), Outcome::Paired);

    EXPECT_EQ(told, "402");
    EXPECT_EQ(log.size(), 1U);
}

TEST_F(DiscoveryTest, APairingThatTheControllerHasForgottenByTheTimeThatItIsConnectedIsNoSuccess) {
    service.addAdapter();
    service.addDevice({.address = pad});
    service.fail("Connect", "org.bluez.Error.Failed", "br-connection-key-missing");
    begin();

    EXPECT_TRUE(loop.runUntil([&] { return told == "400" && count("RemoveDevice 00:01") == 1; }));

    EXPECT_TRUE(stored.empty());
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
    storing = Stored::Failed;
    begin();

    EXPECT_TRUE(loop.runUntil([&] { return told == "400" && service.isSearching(); }));
    EXPECT_TRUE(waitForCall("RemoveDevice 00:01"));

    EXPECT_TRUE(outcomes.empty());
    EXPECT_FALSE(service.device(pad).isPaired);
}

TEST_F(DiscoveryTest, PreferencesThatAreHeldAreTriedAgainAndThePageHearsNothingBefore) {
    service.addAdapter();
    service.addDevice({.address = pad});
    storing = Stored::NotYet;
    begin();
    ASSERT_TRUE(loop.runUntil([&] { return !stored.empty(); }));
    clock.advance(loop, 1s);
    EXPECT_GT(stored.size(), 10U);
    EXPECT_EQ(told, "40");

    storing = Stored::Yes;
    clock.advance(loop, 100ms);

    EXPECT_EQ(outcome(), Outcome::Paired);
    EXPECT_EQ(told, "402");
}

TEST_F(DiscoveryTest, PreferencesThatStayHeldAreNoSuccessAndAreLoggedOnce) {
    service.addAdapter();
    service.addDevice({.address = pad});
    storing = Stored::NotYet;
    begin();
    ASSERT_TRUE(loop.runUntil([&] { return !stored.empty(); }));

    clock.advance(loop, 3s);

    EXPECT_TRUE(waitForCall("RemoveDevice 00:01"));
    EXPECT_EQ(log, std::vector<std::string>{"storing the address of ..:00:01: another program holds the preferences"});
    EXPECT_EQ(told.find('2'), std::string::npos);
}

TEST_F(DiscoveryTest, AnInterruptionWhileThePreferencesAreHeldLeavesNothingBehind) {
    service.addAdapter();
    service.addDevice({.address = pad});
    storing = Stored::NotYet;
    begin();
    ASSERT_TRUE(loop.runUntil([&] { return !stored.empty(); }));

    discovery->interrupt();

    EXPECT_EQ(outcome(), Outcome::Interrupted);
    EXPECT_FALSE(service.device(pad).isPaired);
    expectNothingLeft();
}

TEST_F(DiscoveryTest, AServiceThatIsOnAndDoesNotSearchIsNoBluetooth) {
    service.addAdapter();
    service.fail("StartDiscovery", "org.bluez.Error.NotAuthorized");
    begin();

    EXPECT_TRUE(passTime([&] { return !outcomes.empty(); }));

    EXPECT_EQ(outcome(), Outcome::NoBluetooth);
    EXPECT_EQ(told, "43") << "it never searched";
    EXPECT_LE(count("StartDiscovery hci0"), 12);
}

TEST_F(DiscoveryTest, ASearchThatIsRefusedForAMomentGoesOn) {
    service.addAdapter();
    service.addDevice({.address = pad});
    service.fail("StartDiscovery", "org.bluez.Error.NotReady");
    begin();
    ASSERT_TRUE(waitForCall("StartDiscovery hci0"));

    service.behave("StartDiscovery");

    EXPECT_TRUE(passTime([&] { return !outcomes.empty(); }));
    EXPECT_EQ(outcome(), Outcome::Paired);
    EXPECT_EQ(told, "402");
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

TEST_F(DiscoveryTest, AServiceThatIsRestartedAgainLaterGetsItsTimeAgain) {
    service.addAdapter();
    begin();
    ASSERT_TRUE(searches());
    for (const char* states : {"400", "4000"}) {
        service.vanish();
        ASSERT_TRUE(loop.runUntil([&] { return client->adapterState() == AdapterState::Absent; }));
        clock.advance(loop, 1s);
        service.start();
        ASSERT_TRUE(passTime([&] { return told == states; })) << told;
        clock.advance(loop, 60s);
    }
    EXPECT_TRUE(outcomes.empty());
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

TEST_F(DiscoveryTest, AnAdapterThatIsPulledOutWhileTheControllerIsConnectedIsNoSuccess) {
    service.addAdapter();
    service.addDevice({.address = pad});
    service.stall("Connect");
    begin();
    ASSERT_TRUE(waitForCall("Connect 00:01"));

    service.removeAdapter("hci0");

    EXPECT_TRUE(passTime([&] { return !outcomes.empty(); }));
    EXPECT_EQ(outcome(), Outcome::NoBluetooth);
    EXPECT_EQ(told, "403");
    EXPECT_TRUE(stored.empty());
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
            loop.runUntil([&] {
                return !service.isSearching() && !service.hasAgent() && !service.isPairing() &&
                       !service.device(pad).isPaired;
            });
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
