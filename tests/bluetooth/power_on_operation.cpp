#include "tests/bluetooth/bluetooth_test.h"

namespace {

using PowerOnOperationTest = BluetoothOperationTest;

TEST_F(PowerOnOperationTest, SwitchesTheAdapterOn) {
    begin(Power::Off);

    EXPECT_EQ(endOf(client->powerOn(note())), Error::None);

    EXPECT_EQ(client->adapterState(), AdapterState::On);
    EXPECT_TRUE(called("Set Powered hci0"));
}

TEST_F(PowerOnOperationTest, AnAdapterThatIsOnIsLeftAlone) {
    begin();

    EXPECT_EQ(endOf(client->powerOn(note())), Error::None);

    EXPECT_TRUE(service.calls.empty());
}

TEST_F(PowerOnOperationTest, AnAdapterThatIsBlockedIsNone) {
    begin(Power::Off);
    service.fail("Set Powered", "org.bluez.Error.Blocked", "Blocked through rfkill");

    EXPECT_EQ(endOf(client->powerOn(note())), Error::NoAdapter);

    EXPECT_EQ(log, std::vector<std::string>{"switching Bluetooth on: org.bluez.Error.Blocked: Blocked through rfkill"});
}

TEST_F(PowerOnOperationTest, AnAdapterThatStaysOffIsNoneAfterAWhile) {
    begin(Power::Off);
    service.stall("Set Powered");
    const auto handle = client->powerOn(note());
    ASSERT_TRUE(waitForCall("Set Powered hci0"));

    clock.advance(loop, 10s);

    EXPECT_EQ(ends, std::vector{Error::NoAdapter});
    EXPECT_EQ(log, std::vector<std::string>{"switching Bluetooth on: no answer in time"});
}

TEST_F(PowerOnOperationTest, AnAdapterIsWaitedForAMoment) {
    makeClient();
    ASSERT_TRUE(settle(AdapterState::Absent));
    const auto late = client->powerOn(note());
    loop.runUntil([] { return false; }, 50ms);

    service.addAdapter("hci0", false);

    EXPECT_EQ(endOf(late), Error::None);
}

TEST_F(PowerOnOperationTest, WithoutAnAdapterItEndsSoon) {
    makeClient();
    ASSERT_TRUE(settle(AdapterState::Absent));
    const auto handle = client->powerOn(note());
    loop.runUntil([] { return false; }, 50ms);

    clock.advance(loop, 2s);

    EXPECT_EQ(ends, std::vector{Error::NoAdapter});
}

TEST_F(PowerOnOperationTest, AServiceThatCannotBeStartedIsNoAdapter) {
    service.vanish();
    makeClient();
    ASSERT_TRUE(settle(AdapterState::Absent));

    EXPECT_EQ(endOf(client->powerOn(note())), Error::NoAdapter);
}

} // namespace
