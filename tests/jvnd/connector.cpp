#include "services/jvnd/Connector.h"

#include "tests/jvnd/FakeBluetooth.h"
#include "tests/jvnd/FakeDevices.h"
#include "tests/support/HeldClock.h"

#include <gtest/gtest.h>

using namespace jvnd;
using namespace std::chrono_literals;
using bluetooth::Error;
using testing_support::firstAddress;
using testing_support::secondAddress;

namespace {

class ConnectorTest : public ::testing::Test {
protected:
    ConnectorTest() {
        connector.onEnded([this](Connector::Result result) {
            ended += result ? std::to_string(static_cast<unsigned>(*result)) : "connected";
        });
    }
    // Up to where the link is there and the input device is waited for.
    void link(const bluetooth::Address& address = firstAddress) {
        ASSERT_TRUE(connector.connect(address));
        bluetooth.end();
        bluetooth.set(address, /*isConnected=*/true);
        bluetooth.end();
    }

    testing_support::HeldClock clock;
    services::EventLoop loop{clock};
    testing_support::FakeBluetooth bluetooth;
    testing_support::FakeDevices devices;
    Connector connector{loop, bluetooth, devices};
    std::string ended; // "connected" or the reason
};

TEST_F(ConnectorTest, AControllerIsConnectedWhenGamesCanOpenIt) {
    link();
    EXPECT_EQ(bluetooth.calls, "power, connect 1");
    EXPECT_EQ(ended, "");
    EXPECT_TRUE(connector.isConnecting());

    devices.setControllers({{secondAddress}});
    EXPECT_EQ(ended, "") << "another one's input device";
    devices.setControllers({{secondAddress, firstAddress}});

    EXPECT_EQ(ended, "connected");
    EXPECT_FALSE(connector.isConnecting());
    EXPECT_TRUE(connector.isConnected(firstAddress));
    EXPECT_EQ(bluetooth.calls, "power, connect 1");
}

TEST_F(ConnectorTest, WhereNobodyCanSayWhichInputDevicesThereAreTheLinkIsEnough) {
    devices.setControllers(std::nullopt);
    link();
    EXPECT_EQ(ended, "connected");
}

TEST_F(ConnectorTest, AnInputDeviceThatIsThereAlreadyIsNotWaitedFor) {
    devices.setControllers({{firstAddress}});
    link();
    EXPECT_EQ(ended, "connected");
}

TEST_F(ConnectorTest, TheAnswerToConnectingMayComeBeforeTheNewsOfTheLink) {
    devices.setControllers({{firstAddress}});
    ASSERT_TRUE(connector.connect(firstAddress));
    bluetooth.end();
    bluetooth.end();
    EXPECT_EQ(ended, "");

    bluetooth.set(firstAddress, /*isConnected=*/true);

    EXPECT_EQ(ended, "connected");
}

TEST_F(ConnectorTest, EveryErrorOfBluetoothHasItsReason) {
    const std::vector<std::pair<Error, const char*>> reasons{
        {Error::NoAdapter, "1"},   {Error::UnknownDevice, "2"}, {Error::Refused, "3"},  {Error::BondLost, "3"},
        {Error::Unreachable, "4"}, {Error::Failed, "4"},        {Error::TimedOut, "5"}, {Error::Busy, "7"}};
    for (const auto& [error, reason] : reasons) {
        ended.clear();
        ASSERT_TRUE(connector.connect(firstAddress));
        bluetooth.end();
        bluetooth.end(error);
        EXPECT_EQ(ended, reason) << bluetooth::errorText(error);
        EXPECT_FALSE(connector.isConnecting());
    }
}

TEST_F(ConnectorTest, WithoutAnAdapterNothingIsConnected) {
    ASSERT_TRUE(connector.connect(firstAddress));
    bluetooth.end(Error::NoAdapter);
    EXPECT_EQ(ended, "1");
    EXPECT_EQ(bluetooth.calls, "power");
}

TEST_F(ConnectorTest, After18SecondsItIsGivenUp) {
    ASSERT_TRUE(connector.connect(firstAddress));
    bluetooth.end();

    clock.advance(loop, 18s - 1us);
    EXPECT_EQ(ended, "");
    clock.advance(loop, 1us);

    EXPECT_EQ(ended, "5");
    EXPECT_EQ(bluetooth.calls, "power, connect 1, gives up connect 1");
    EXPECT_FALSE(loop.nextTimer());
}

TEST_F(ConnectorTest, AnAdapterThatIsSlowToComeOnCountsInTheSame18Seconds) {
    ASSERT_TRUE(connector.connect(firstAddress));
    clock.advance(loop, 10s);
    bluetooth.end();
    clock.advance(loop, 8s);
    EXPECT_EQ(ended, "5");
}

TEST_F(ConnectorTest, ALinkWithoutAnInputDeviceIsNotLeftConnected) {
    link();
    clock.advance(loop, 18s);
    EXPECT_EQ(ended, "6");
    EXPECT_EQ(bluetooth.calls, "power, connect 1, disconnect 1");
    bluetooth.end();
    EXPECT_FALSE(bluetooth.isBusy());
}

TEST_F(ConnectorTest, ALinkThatIsLostWhileTheInputDeviceIsAwaitedIsUnreachable) {
    link();
    bluetooth.set(firstAddress, /*isConnected=*/false);
    EXPECT_EQ(ended, "4");
}

TEST_F(ConnectorTest, ADeviceThatVanishesMeanwhileIsUnreachable) {
    link();
    bluetooth.remove(firstAddress);
    EXPECT_EQ(ended, "4");
}

TEST_F(ConnectorTest, TheSameControllerIsJoinedAndAnotherOneIsNot) {
    ASSERT_TRUE(connector.connect(firstAddress));
    EXPECT_TRUE(connector.connect(firstAddress));
    EXPECT_FALSE(connector.connect(secondAddress));
    EXPECT_FALSE(connector.connect(std::nullopt));
    EXPECT_EQ(bluetooth.calls, "power");
}

TEST_F(ConnectorTest, CancellingGivesUpWhatIsUnderWay) {
    ASSERT_TRUE(connector.connect(firstAddress));
    connector.cancel();
    EXPECT_EQ(bluetooth.calls, "power, gives up power");

    bluetooth.calls.clear();
    ASSERT_TRUE(connector.connect(firstAddress));
    bluetooth.end();
    connector.cancel();
    EXPECT_EQ(bluetooth.calls, "power, connect 1, gives up connect 1");

    bluetooth.calls.clear();
    link();
    connector.cancel();
    EXPECT_EQ(bluetooth.calls, "power, connect 1, disconnect 1");
    EXPECT_EQ(ended, "");
    EXPECT_FALSE(loop.nextTimer());
}

TEST_F(ConnectorTest, WithoutAnAddressItWaitsForTheControllerToCall) {
    ASSERT_TRUE(connector.connect(std::nullopt));
    bluetooth.end();
    EXPECT_EQ(bluetooth.calls, "power");
    bluetooth.set(secondAddress, /*isConnected=*/true, /*isGamepad=*/false);
    EXPECT_EQ(ended, "") << "a headset";

    bluetooth.set(firstAddress, /*isConnected=*/true);
    EXPECT_EQ(ended, "");
    devices.setControllers({{firstAddress}});

    EXPECT_EQ(ended, "connected");
    EXPECT_TRUE(connector.isConnected(std::nullopt));
}

TEST_F(ConnectorTest, AControllerThatNeverCallsIsATimeOver) {
    ASSERT_TRUE(connector.connect(std::nullopt));
    bluetooth.end();
    clock.advance(loop, 18s);
    EXPECT_EQ(ended, "5");
    EXPECT_EQ(bluetooth.calls, "power");
}

TEST_F(ConnectorTest, DisconnectingEndsAnAttemptAsRefused) {
    ASSERT_TRUE(connector.connect(firstAddress));
    bluetooth.end();
    connector.disconnect(firstAddress);
    EXPECT_EQ(ended, "3");
    EXPECT_EQ(bluetooth.calls, "power, connect 1, gives up connect 1, disconnect 1");
}

TEST_F(ConnectorTest, DisconnectingAnotherOneLeavesTheAttemptAlone) {
    ASSERT_TRUE(connector.connect(firstAddress));
    connector.disconnect(secondAddress);
    EXPECT_EQ(ended, "");
    EXPECT_EQ(bluetooth.calls, "power, disconnect 2");
}

TEST_F(ConnectorTest, WithoutAnAddressEveryControllerThatHasCalledIsDisconnected) {
    bluetooth.set(firstAddress, /*isConnected=*/true);
    bluetooth.set(secondAddress, /*isConnected=*/true, /*isGamepad=*/false);
    connector.disconnect(std::nullopt);
    EXPECT_EQ(bluetooth.calls, "disconnect 1");
}

TEST_F(ConnectorTest, ANewAttemptMayBeginWhereOneEnds) {
    int left = 3;
    connector.onEnded([&](Connector::Result) {
        if (--left == 0) return;
        EXPECT_TRUE(connector.connect(secondAddress));
    });
    ASSERT_TRUE(connector.connect(firstAddress));
    for (int i = 0; i < 3; ++i) bluetooth.end(Error::NoAdapter);
    EXPECT_EQ(left, 0);
    EXPECT_EQ(bluetooth.calls, "power, power, power");
}

TEST_F(ConnectorTest, BringingUpSwitchesTheAdapterOn) {
    connector.bringUp();
    EXPECT_EQ(bluetooth.calls, "power");
    bluetooth.end(Error::NoAdapter);
    EXPECT_FALSE(bluetooth.isBusy());
}

TEST_F(ConnectorTest, BringingUpIsDoneOnceAtATime) {
    for (int i = 0; i < 100; ++i) connector.bringUp();
    EXPECT_EQ(bluetooth.calls, "power");
    bluetooth.end();
    connector.bringUp();
    EXPECT_EQ(bluetooth.calls, "power, power");
}

} // namespace
