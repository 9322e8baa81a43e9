#include "tests/bluetooth/bluetooth_test.h"

namespace {

using testing_support::MockDevice;

class BluetoothOperationTest : public BluetoothTest {
protected:
    // A client that knows one adapter.
    void begin(bool isPowered = true) {
        service.addAdapter("hci0", isPowered);
        makeClient();
        ASSERT_TRUE(settle(isPowered ? AdapterState::On : AdapterState::Off));
    }
    void beginWith(MockDevice device) {
        device.address = pad;
        device.isKnown = true;
        service.addDevice(std::move(device));
        begin();
    }
};

TEST_F(BluetoothOperationTest, SwitchesTheAdapterOn) {
    begin(false);

    EXPECT_EQ(endOf(client->powerOn(note())), Error::None);

    EXPECT_EQ(client->adapterState(), AdapterState::On);
    EXPECT_TRUE(called("Set Powered hci0"));
}

TEST_F(BluetoothOperationTest, AnAdapterThatIsOnIsLeftAlone) {
    begin();

    EXPECT_EQ(endOf(client->powerOn(note())), Error::None);

    EXPECT_TRUE(service.calls.empty());
}

TEST_F(BluetoothOperationTest, AnAdapterThatIsBlockedIsNone) {
    begin(false);
    service.fail("Set Powered", "org.bluez.Error.Blocked", "Blocked through rfkill");

    EXPECT_EQ(endOf(client->powerOn(note())), Error::NoAdapter);

    EXPECT_EQ(log, std::vector<std::string>{"switching Bluetooth on: org.bluez.Error.Blocked: Blocked through rfkill"});
}

TEST_F(BluetoothOperationTest, AnAdapterThatStaysOffIsNoneAfterAWhile) {
    begin(false);
    service.stall("Set Powered");
    const auto handle = client->powerOn(note());
    ASSERT_TRUE(waitForCall("Set Powered hci0"));

    clock.advance(loop, 10s);

    EXPECT_EQ(ends, std::vector{Error::NoAdapter});
}

TEST_F(BluetoothOperationTest, AnAdapterIsWaitedForAMoment) {
    makeClient();
    ASSERT_TRUE(settle(AdapterState::Absent));
    const auto late = client->powerOn(note());
    loop.runUntil([] { return false; }, 50ms);

    service.addAdapter("hci0", false);

    EXPECT_EQ(endOf(late), Error::None);
}

TEST_F(BluetoothOperationTest, WithoutAnAdapterItEndsSoon) {
    makeClient();
    ASSERT_TRUE(settle(AdapterState::Absent));
    const auto handle = client->powerOn(note());
    loop.runUntil([] { return false; }, 50ms);

    clock.advance(loop, 2s);

    EXPECT_EQ(ends, std::vector{Error::NoAdapter});
}

TEST_F(BluetoothOperationTest, AServiceThatCannotBeStartedIsNoAdapter) {
    service.vanish();
    makeClient();
    ASSERT_TRUE(settle(AdapterState::Absent));

    EXPECT_EQ(endOf(client->powerOn(note())), Error::NoAdapter);
}

TEST_F(BluetoothOperationTest, ASearchBringsDevicesThatAreHeard) {
    begin();
    service.addDevice({.address = pad});
    const auto search = client->search(note());

    EXPECT_TRUE(loop.runUntil([&] { return !changes.empty() && changes.back().isHeard; }));

    EXPECT_EQ(changes.back().address, padAddress);
    EXPECT_TRUE(changes.back().isGamepad);
}

TEST_F(BluetoothOperationTest, ADeviceThatComesDuringTheSearchIsHeard) {
    begin();
    const auto search = client->search(note());
    ASSERT_TRUE(loop.runUntil([&] { return service.isSearching(); }));

    service.addDevice({.address = pad});

    EXPECT_TRUE(loop.runUntil([&] { return !changes.empty() && changes.back().isHeard; }));
}

TEST_F(BluetoothOperationTest, ASearchEndsWithItsHandle) {
    begin();
    service.addDevice({.address = pad});
    auto search = client->search(note());
    ASSERT_TRUE(loop.runUntil([&] { return client->device(padAddress) && client->device(padAddress)->isHeard; }));

    search.reset();
    quiet();

    EXPECT_FALSE(service.isSearching());
    EXPECT_TRUE(called("StopDiscovery hci0"));
    EXPECT_FALSE(client->device(padAddress)->isHeard);
    EXPECT_TRUE(ends.empty());
}

TEST_F(BluetoothOperationTest, ASearchEndsByItselfWithTheAdapter) {
    begin();
    const auto search = client->search(note());
    ASSERT_TRUE(loop.runUntil([&] { return service.isSearching(); }));

    service.removeAdapter("hci0");

    EXPECT_EQ(endOf(search), Error::NoAdapter);
}

TEST_F(BluetoothOperationTest, ASearchEndsByItselfWithTheService) {
    begin();
    const auto search = client->search(note());
    ASSERT_TRUE(loop.runUntil([&] { return service.isSearching(); }));

    service.vanish();

    EXPECT_EQ(endOf(search), Error::NoAdapter);
}

TEST_F(BluetoothOperationTest, ASearchMovesToTheAdapterThatIsUsedOnceAllAreThere) {
    service.addAdapter("hci1");
    makeClient();
    ASSERT_TRUE(settle(AdapterState::On));
    const auto search = client->search(note());
    ASSERT_TRUE(waitForCall("StartDiscovery hci1"));

    service.addAdapter("hci0");
    ASSERT_TRUE(waitForCall("StartDiscovery hci0"));
    service.addDevice({.address = pad});

    EXPECT_TRUE(loop.runUntil([&] { return client->device(padAddress) && client->device(padAddress)->isHeard; }));
    EXPECT_TRUE(called("StopDiscovery hci1"));
    EXPECT_TRUE(ends.empty());
}

TEST_F(BluetoothOperationTest, ASearchGoesOnAtTheAdapterThatIsLeft) {
    begin();
    service.addAdapter("hci1");
    const auto search = client->search(note());
    ASSERT_TRUE(waitForCall("StartDiscovery hci0"));

    service.removeAdapter("hci0");

    EXPECT_TRUE(waitForCall("StartDiscovery hci1"));
    EXPECT_TRUE(ends.empty());
}

TEST_F(BluetoothOperationTest, ASearchThatIsNotAnsweredIsGivenUp) {
    begin();
    service.stall("StartDiscovery");
    const auto search = client->search(note());
    ASSERT_TRUE(waitForCall("StartDiscovery hci0"));

    clock.advance(loop, 11s);

    EXPECT_EQ(ends, std::vector{Error::TimedOut});
}

TEST_F(BluetoothOperationTest, PairsWithAnAgentOfItsOwn) {
    beginWith({});
    auto pairing = client->pair(padAddress, note());

    EXPECT_EQ(endOf(pairing), Error::None);

    EXPECT_TRUE(client->device(padAddress)->isPaired);
    EXPECT_EQ(service.calls, (std::vector<std::string>{"RegisterAgent NoInputNoOutput", "Pair 00:01"}));
    EXPECT_TRUE(service.hasAgent());
    pairing.reset();
    quiet();
    EXPECT_FALSE(service.hasAgent());
}

TEST_F(BluetoothOperationTest, ARequestForAPinIsRefusedAndSaidOnce) {
    beginWith({.wantsPin = true});

    EXPECT_EQ(endOf(client->pair(padAddress, note())), Error::Refused);

    EXPECT_EQ(service.agentAnswers, std::vector<std::string>{"org.bluez.Error.Rejected"});
    EXPECT_EQ(log, std::vector<std::string>{"pairing with ..:00:01: refused, since it asks for a PIN"});
}

TEST_F(BluetoothOperationTest, APairingThatIsGivenUpIsCancelled) {
    beginWith({});
    service.stall("Pair");
    auto pairing = client->pair(padAddress, note());
    ASSERT_TRUE(waitForCall("Pair 00:01"));

    pairing.reset();
    quiet();

    EXPECT_TRUE(called("CancelPairing 00:01"));
    EXPECT_TRUE(called("UnregisterAgent"));
    EXPECT_TRUE(ends.empty());
}

TEST_F(BluetoothOperationTest, TrustsAndLetsWake) {
    beginWith({});

    EXPECT_EQ(endOf(client->trust(padAddress, note())), Error::None);

    EXPECT_TRUE(client->device(padAddress)->isTrusted);
    EXPECT_TRUE(client->device(padAddress)->mayWake);
}

TEST_F(BluetoothOperationTest, ADeviceThatCannotWakeIsTrustedAllTheSame) {
    beginWith({});
    service.fail("Set WakeAllowed", "org.bluez.Error.NotSupported");

    EXPECT_EQ(endOf(client->trust(padAddress, note())), Error::None);

    EXPECT_TRUE(client->device(padAddress)->isTrusted);
}

TEST_F(BluetoothOperationTest, ConnectsAfterForty) {
    beginWith({.isPaired = true});
    service.stall("Connect");
    const auto connection = client->connect(padAddress, note());
    ASSERT_TRUE(waitForCall("Connect 00:01"));

    clock.advance(loop, 40s);
    EXPECT_TRUE(ends.empty());
    service.letGo("Connect");

    EXPECT_EQ(endOf(connection), Error::None);
    EXPECT_TRUE(client->device(padAddress)->isConnected);
}

TEST_F(BluetoothOperationTest, AConnectionThatIsNeverAnsweredTimesOutAndIsCalledOff) {
    beginWith({.isPaired = true});
    service.stall("Connect");
    const auto connection = client->connect(padAddress, note());
    ASSERT_TRUE(waitForCall("Connect 00:01"));

    clock.advance(loop, 46s);

    EXPECT_EQ(ends, std::vector{Error::TimedOut});
    EXPECT_EQ(log, std::vector<std::string>{"connecting ..:00:01: no answer in time"});
    EXPECT_TRUE(waitForCall("Disconnect 00:01"));
}

TEST_F(BluetoothOperationTest, AConnectionThatIsGivenUpIsCalledOff) {
    beginWith({.isPaired = true});
    service.stall("Connect");
    auto connection = client->connect(padAddress, note());
    ASSERT_TRUE(waitForCall("Connect 00:01"));

    connection.reset();

    EXPECT_TRUE(waitForCall("Disconnect 00:01"));
    EXPECT_TRUE(ends.empty());
}

TEST_F(BluetoothOperationTest, WhatTheServiceSaysOfALinkHasOneMeaning) {
    beginWith({.isPaired = true});
    const std::tuple<const char*, const char*, Error> answers[] = {
        {"org.bluez.Error.AlreadyConnected", "Already Connected", Error::None},
        {"org.bluez.Error.Failed", "br-connection-already-connected", Error::None},
        {"org.bluez.Error.Failed", "br-connection-page-timeout", Error::Unreachable},
        {"org.bluez.Error.Failed", "Host is down", Error::Unreachable},
        {"org.bluez.Error.Failed", "br-connection-aborted-by-remote", Error::Unreachable},
        {"org.bluez.Error.Failed", "br-connection-refused", Error::Refused},
        {"org.bluez.Error.Failed", "br-connection-profile-unavailable", Error::Refused},
        {"org.bluez.Error.NotAvailable", "br-connection-profile-unavailable", Error::Refused},
        {"org.bluez.Error.Failed", "br-connection-key-missing", Error::BondLost},
        {"org.bluez.Error.Failed", "br-connection-busy", Error::Busy},
        {"org.bluez.Error.InProgress", "In Progress", Error::Busy},
        {"org.bluez.Error.NotReady", "Resource Not Ready", Error::NoAdapter},
        {"org.bluez.Error.Failed", "br-connection-adapter-not-powered", Error::NoAdapter},
        {"org.bluez.Error.DoesNotExist", "Does Not Exist", Error::UnknownDevice},
        {"org.freedesktop.DBus.Error.UnknownObject", "", Error::UnknownDevice},
        {"org.bluez.Error.AuthenticationFailed", "", Error::Refused},
        {"org.bluez.Error.Failed", "something new", Error::Failed},
        {"com.example.Nonsense", "", Error::Failed},
    };
    for (const auto& [name, text, error] : answers) {
        service.fail("Connect", name, text);
        EXPECT_EQ(endOf(client->connect(padAddress, note())), error) << name << ": " << text;
    }
}

TEST_F(BluetoothOperationTest, NothingInALogHoldsAWholeAddress) {
    beginWith({.isPaired = true});
    service.fail("Connect", "org.freedesktop.DBus.Error.UnknownObject",
                 "Unknown object /org/bluez/hci0/dev_00_AA_01_01_00_01");

    EXPECT_EQ(endOf(client->connect(padAddress, note())), Error::UnknownDevice);

    ASSERT_EQ(log.size(), 1U);
    EXPECT_EQ(log[0].find("00_AA"), std::string::npos) << log[0];
    EXPECT_NE(log[0].find("..:00:01"), std::string::npos) << log[0];
}

TEST_F(BluetoothOperationTest, AnAnswerOfAnotherKindIsAnAnswer) {
    beginWith({.isPaired = true});
    service.answerNonsense("Connect");

    EXPECT_EQ(endOf(client->connect(padAddress, note())), Error::None);
}

TEST_F(BluetoothOperationTest, ADeviceThatVanishesInTheMiddleIsUnknown) {
    beginWith({.isPaired = true});
    service.stall("Connect");
    const auto connection = client->connect(padAddress, note());
    ASSERT_TRUE(waitForCall("Connect 00:01"));

    service.removeDevice(pad);

    EXPECT_EQ(endOf(connection), Error::UnknownDevice);
}

TEST_F(BluetoothOperationTest, AServiceThatVanishesInTheMiddleIsNoAdapter) {
    beginWith({.isPaired = true});
    service.stall("Connect");
    const auto connection = client->connect(padAddress, note());
    ASSERT_TRUE(waitForCall("Connect 00:01"));

    service.vanish();

    EXPECT_EQ(endOf(connection), Error::NoAdapter);
}

TEST_F(BluetoothOperationTest, ABusThatVanishesInTheMiddleIsNoAdapter) {
    beginWith({.isPaired = true});
    service.stall("Connect");
    const auto connection = client->connect(padAddress, note());
    ASSERT_TRUE(waitForCall("Connect 00:01"));

    bus.kill();

    EXPECT_EQ(endOf(connection), Error::NoAdapter);
}

TEST_F(BluetoothOperationTest, AnAdapterThatVanishesInTheMiddleIsNoAdapter) {
    beginWith({.isPaired = true});
    service.stall("Connect");
    const auto connection = client->connect(padAddress, note());
    ASSERT_TRUE(waitForCall("Connect 00:01"));

    service.removeAdapter("hci0");

    EXPECT_EQ(endOf(connection), Error::NoAdapter);
}

TEST_F(BluetoothOperationTest, ADeviceThatNobodyKnowsCannotBeConnected) {
    begin();

    EXPECT_EQ(endOf(client->connect(padAddress, note())), Error::UnknownDevice);
    EXPECT_EQ(endOf(client->disconnect(padAddress, note())), Error::None);
    EXPECT_EQ(endOf(client->remove(padAddress, note())), Error::None);
}

TEST_F(BluetoothOperationTest, DisconnectsAndRemoves) {
    beginWith({.isPaired = true, .isConnected = true});

    EXPECT_EQ(endOf(client->disconnect(padAddress, note())), Error::None);
    EXPECT_EQ(endOf(client->disconnect(padAddress, note())), Error::None);
    EXPECT_EQ(endOf(client->remove(padAddress, note())), Error::None);

    EXPECT_FALSE(client->device(padAddress));
}

TEST_F(BluetoothOperationTest, ACompletionMayBeginTheNextOperationAndEndItsOwn) {
    beginWith({});
    Client::Handle handle;
    handle = client->pair(padAddress, [&](Error) {
        handle = client->trust(padAddress, [&](Error) { handle = client->connect(padAddress, note()); });
    });

    EXPECT_EQ(endOf(handle), Error::None);

    const Device device = *client->device(padAddress);
    EXPECT_TRUE(device.isPaired && device.isTrusted && device.isConnected);
}

} // namespace
