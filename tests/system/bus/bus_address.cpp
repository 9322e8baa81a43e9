#include "host/bus/bus_address.h"

#include "tests/support/private_bus.h"

#include <cstdlib>
#include <gtest/gtest.h>

namespace {

TEST(BusAddress, OnlyAddressesThatAreSimplyConnectedToAreTaken) {
    EXPECT_TRUE(host::isPlainBusAddress("unix:path=/run/user/1000/bus"));
    EXPECT_TRUE(host::isPlainBusAddress("unix:abstract=/tmp/dbus-1,guid=00000000000000000000000000000000"));
    EXPECT_TRUE(host::isPlainBusAddress("tcp:host=localhost,port=1"));
    EXPECT_FALSE(host::isPlainBusAddress("autolaunch:"));
    EXPECT_FALSE(host::isPlainBusAddress("unixexec:path=/bin/sh"));
    EXPECT_FALSE(host::isPlainBusAddress("unix:path=/a;autolaunch:"));
    EXPECT_FALSE(host::isPlainBusAddress(""));
    EXPECT_FALSE(host::isPlainBusAddress("nonsense"));
}

TEST(BusAddress, TheSocketFileComesFromTheFirstEntryThatHasOne) {
    EXPECT_EQ("/run/a b", host::socketFileOfBusAddress("unix:path=/run/a%20b,guid=0011"));
    EXPECT_EQ("/second", host::socketFileOfBusAddress("tcp:host=localhost,port=1;unix:path=/second"));
    EXPECT_EQ("", host::socketFileOfBusAddress("unix:abstract=/tmp/x"));
    EXPECT_EQ("", host::socketFileOfBusAddress(""));
}

TEST(BusAddress, TheEnvironmentNamesTheBus) {
    const testing_support::PrivateBus bus(testing_support::PrivateBus::Start::Later);

    EXPECT_EQ(bus.address(), host::busAddressToTry());
}

} // namespace
