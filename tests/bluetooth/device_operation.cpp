#include "tests/bluetooth/bluetooth_test.h"

namespace {

using DeviceOperationTest = BluetoothOperationTest;

TEST_F(DeviceOperationTest, PairsWithAnAgentOfItsOwn) {
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

TEST_F(DeviceOperationTest, ARequestForAPinIsRefusedAndSaidOnce) {
    beginWith({.wantsPin = true});

    EXPECT_EQ(endOf(client->pair(padAddress, note())), Error::Refused);

    EXPECT_EQ(service.agentAnswers, std::vector<std::string>{"org.bluez.Error.Rejected"});
    EXPECT_EQ(log, std::vector<std::string>{"pairing with ..:00:01: refused, since it asks for a PIN"});
}

TEST_F(DeviceOperationTest, WhatWouldNeedAPersonIsRefusedAndSaid) {
    beginWith({});
    service.stall("Pair");
    for (const char* question :
         {"RequestPinCode", "RequestPasskey", "DisplayPinCode", "DisplayPasskey", "RequestConfirmation"}) {
        service.calls.clear();
        service.agentAnswers.clear();
        const auto pairing = client->pair(padAddress, note());
        ASSERT_TRUE(waitForCall("Pair 00:01"));
        service.askAgents(question, pad);
        ASSERT_TRUE(loop.runUntil([&] { return !service.agentAnswers.empty(); })) << question;
        EXPECT_EQ(service.agentAnswers.back(), "org.bluez.Error.Rejected") << question;
    }
    EXPECT_EQ(log, (std::vector<std::string>{
                       "pairing with ..:00:01: refused, since it asks for a PIN",
                       "pairing with ..:00:01: refused, since it wants a PIN to be typed on it",
                       "pairing with ..:00:01: refused, since it wants a number to be compared",
                   }));
}

TEST_F(DeviceOperationTest, OnlyTheDeviceThatIsPairedIsLetInUnasked) {
    beginWith({});
    service.stall("Pair");
    const auto pairing = client->pair(padAddress, note());
    ASSERT_TRUE(waitForCall("Pair 00:01"));
    const auto answer = [this](const char* question, const std::string& address) {
        service.agentAnswers.clear();
        service.askAgents(question, address);
        loop.runUntil([&] { return !service.agentAnswers.empty(); });
        return service.agentAnswers.empty() ? "none" : service.agentAnswers.back();
    };
    const std::string other = "00:AA:01:01:00:77";
    EXPECT_EQ(answer("RequestAuthorization", pad), "");
    EXPECT_EQ(answer("AuthorizeService", pad), "");
    EXPECT_TRUE(log.empty()) << log.back();
    EXPECT_EQ(answer("RequestAuthorization", other), "org.bluez.Error.Rejected");
    EXPECT_EQ(answer("AuthorizeService", other), "org.bluez.Error.Rejected");
    EXPECT_EQ(log, std::vector<std::string>{"pairing with ..:00:01: another device asks to be let in, and is not"});
    EXPECT_EQ(answer("Cancel", pad), "");
    EXPECT_EQ(answer("Release", pad), "");
    EXPECT_EQ(answer("SomethingNew", pad), "org.freedesktop.DBus.Error.UnknownMethod");
}

TEST_F(DeviceOperationTest, APairingThatIsGivenUpIsCancelled) {
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

TEST_F(DeviceOperationTest, TrustsAndLetsWake) {
    beginWith({});

    EXPECT_EQ(endOf(client->trust(padAddress, note())), Error::None);

    EXPECT_TRUE(client->device(padAddress)->isTrusted);
    EXPECT_TRUE(client->device(padAddress)->mayWake);
}

TEST_F(DeviceOperationTest, ADeviceThatCannotWakeIsTrustedAllTheSame) {
    beginWith({});
    service.fail("Set WakeAllowed", "org.bluez.Error.NotSupported");

    EXPECT_EQ(endOf(client->trust(padAddress, note())), Error::None);

    EXPECT_TRUE(client->device(padAddress)->isTrusted);
}

TEST_F(DeviceOperationTest, ConnectsAfterForty) {
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

TEST_F(DeviceOperationTest, AConnectionThatIsNeverAnsweredTimesOutAndIsCalledOff) {
    beginWith({.isPaired = true});
    service.stall("Connect");
    const auto connection = client->connect(padAddress, note());
    ASSERT_TRUE(waitForCall("Connect 00:01"));

    clock.advance(loop, 46s);

    EXPECT_EQ(ends, std::vector{Error::TimedOut});
    EXPECT_EQ(log, std::vector<std::string>{"connecting ..:00:01: no answer in time"});
    EXPECT_TRUE(waitForCall("Disconnect 00:01"));
}

TEST_F(DeviceOperationTest, AConnectionThatIsGivenUpIsCalledOff) {
    beginWith({.isPaired = true});
    service.stall("Connect");
    auto connection = client->connect(padAddress, note());
    ASSERT_TRUE(waitForCall("Connect 00:01"));

    connection.reset();

    EXPECT_TRUE(waitForCall("Disconnect 00:01"));
    EXPECT_TRUE(ends.empty());
}

TEST_F(DeviceOperationTest, WhatTheServiceSaysOfALinkHasOneMeaning) {
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

TEST_F(DeviceOperationTest, NothingInALogHoldsAWholeAddress) {
    beginWith({.isPaired = true});
    service.fail("Connect", "org.freedesktop.DBus.Error.UnknownObject",
                 "Unknown object /org/bluez/hci0/dev_00_AA_01_01_00_01");

    EXPECT_EQ(endOf(client->connect(padAddress, note())), Error::UnknownDevice);

    ASSERT_EQ(log.size(), 1U);
    EXPECT_EQ(log[0].find("00_AA"), std::string::npos) << log[0];
    EXPECT_NE(log[0].find("..:00:01"), std::string::npos) << log[0];
}

TEST_F(DeviceOperationTest, AnAnswerOfAnotherKindIsAnAnswer) {
    beginWith({.isPaired = true});
    service.answerNonsense("Connect");

    EXPECT_EQ(endOf(client->connect(padAddress, note())), Error::None);
}

TEST_F(DeviceOperationTest, ADeviceThatVanishesInTheMiddleIsUnknown) {
    beginWith({.isPaired = true});
    service.stall("Connect");
    const auto connection = client->connect(padAddress, note());
    ASSERT_TRUE(waitForCall("Connect 00:01"));

    service.removeDevice(pad);

    EXPECT_EQ(endOf(connection), Error::UnknownDevice);
}

TEST_F(DeviceOperationTest, AServiceThatVanishesInTheMiddleIsNoAdapter) {
    beginWith({.isPaired = true});
    service.stall("Connect");
    const auto connection = client->connect(padAddress, note());
    ASSERT_TRUE(waitForCall("Connect 00:01"));

    service.vanish();

    EXPECT_EQ(endOf(connection), Error::NoAdapter);
}

TEST_F(DeviceOperationTest, ABusThatVanishesInTheMiddleIsNoAdapter) {
    beginWith({.isPaired = true});
    service.stall("Connect");
    const auto connection = client->connect(padAddress, note());
    ASSERT_TRUE(waitForCall("Connect 00:01"));

    bus.kill();

    EXPECT_EQ(endOf(connection), Error::NoAdapter);
}

TEST_F(DeviceOperationTest, AnAdapterThatVanishesInTheMiddleIsNoAdapter) {
    beginWith({.isPaired = true});
    service.stall("Connect");
    const auto connection = client->connect(padAddress, note());
    ASSERT_TRUE(waitForCall("Connect 00:01"));

    service.removeAdapter("hci0");

    EXPECT_EQ(endOf(connection), Error::NoAdapter);
}

TEST_F(DeviceOperationTest, ADeviceThatNobodyKnowsCannotBeConnected) {
    begin();

    EXPECT_EQ(endOf(client->connect(padAddress, note())), Error::UnknownDevice);
    EXPECT_EQ(endOf(client->disconnect(padAddress, note())), Error::None);
    EXPECT_EQ(endOf(client->remove(padAddress, note())), Error::None);
}

TEST_F(DeviceOperationTest, DisconnectsAndRemoves) {
    beginWith({.isPaired = true, .isConnected = true});

    EXPECT_EQ(endOf(client->disconnect(padAddress, note())), Error::None);
    EXPECT_EQ(endOf(client->disconnect(padAddress, note())), Error::None);
    EXPECT_EQ(endOf(client->remove(padAddress, note())), Error::None);

    EXPECT_FALSE(client->device(padAddress));
}

TEST_F(DeviceOperationTest, ACompletionMayBeginTheNextOperationAndEndItsOwn) {
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
