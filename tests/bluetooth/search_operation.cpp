#include "tests/bluetooth/bluetooth_test.h"

namespace {

using SearchOperationTest = BluetoothOperationTest;

TEST_F(SearchOperationTest, ASearchBringsDevicesThatAreHeard) {
    begin();
    service.addDevice({.address = pad});
    const auto search = client->search(note());

    EXPECT_TRUE(loop.runUntil([&] { return !changes.empty() && changes.back().isHeard; }));

    EXPECT_EQ(changes.back().address, padAddress);
    EXPECT_TRUE(changes.back().isGamepad);
}

TEST_F(SearchOperationTest, ASearchSaysWhenTheServiceHasBegunIt) {
    begin();
    int begun = 0;
    client->setListener({.searchBegan = [&begun] { ++begun; }});
    service.stall("StartDiscovery");
    const auto search = client->search(note());
    ASSERT_TRUE(waitForCall("StartDiscovery hci0"));
    EXPECT_EQ(begun, 0);

    service.letGo("StartDiscovery");

    EXPECT_TRUE(loop.runUntil([&begun] { return begun == 1; }));
}

TEST_F(SearchOperationTest, ADeviceThatComesDuringTheSearchIsHeard) {
    begin();
    const auto search = client->search(note());
    ASSERT_TRUE(loop.runUntil([&] { return service.isSearching(); }));

    service.addDevice({.address = pad});

    EXPECT_TRUE(loop.runUntil([&] { return !changes.empty() && changes.back().isHeard; }));
}

TEST_F(SearchOperationTest, ADeviceThatIsHeardNoLongerIsNot) {
    beginWith({.isPaired = true});
    const auto search = client->search(note());
    ASSERT_TRUE(loop.runUntil([&] { return client->device(padAddress)->isHeard; }));

    service.device(pad).isDiscoverable = false;
    service.changed(pad);

    EXPECT_TRUE(loop.runUntil([&] { return !client->device(padAddress)->isHeard; }));
}

TEST_F(SearchOperationTest, ASearchEndsWithItsHandle) {
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

TEST_F(SearchOperationTest, ASearchEndsByItselfWithTheAdapter) {
    begin();
    const auto search = client->search(note());
    ASSERT_TRUE(loop.runUntil([&] { return service.isSearching(); }));

    service.removeAdapter("hci0");

    EXPECT_EQ(endOf(search), Error::NoAdapter);
}

TEST_F(SearchOperationTest, ASearchEndsByItselfWithTheService) {
    begin();
    const auto search = client->search(note());
    ASSERT_TRUE(loop.runUntil([&] { return service.isSearching(); }));

    service.vanish();

    EXPECT_EQ(endOf(search), Error::NoAdapter);
}

TEST_F(SearchOperationTest, ASearchMovesToTheAdapterThatIsUsedOnceAllAreThere) {
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

TEST_F(SearchOperationTest, ASearchGoesOnAtTheAdapterThatIsLeft) {
    begin();
    service.addAdapter("hci1");
    const auto search = client->search(note());
    ASSERT_TRUE(waitForCall("StartDiscovery hci0"));

    service.removeAdapter("hci0");

    EXPECT_TRUE(waitForCall("StartDiscovery hci1"));
    EXPECT_TRUE(ends.empty());
}

TEST_F(SearchOperationTest, ASearchThatIsNotAnsweredIsGivenUp) {
    begin();
    service.stall("StartDiscovery");
    const auto search = client->search(note());
    ASSERT_TRUE(waitForCall("StartDiscovery hci0"));

    clock.advance(loop, 11s);

    EXPECT_EQ(ends, std::vector{Error::TimedOut});
}

} // namespace
