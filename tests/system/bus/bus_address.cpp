#include "system/bus/bus_address.h"

#include "tests/support/PrivateBus.h"

#include <cstdlib>
#include <gtest/gtest.h>

namespace {

TEST(BusAddress, OnlySocketsOfThisComputerAreTaken) {
    EXPECT_TRUE(seat::isPlainBusAddress("unix:path=/run/user/1000/bus"));
    EXPECT_TRUE(seat::isPlainBusAddress("unix:abstract=/tmp/dbus-1,guid=00000000000000000000000000000000"));
    EXPECT_TRUE(seat::isPlainBusAddress("unix:path=/a;unix:path=/b"));
    EXPECT_FALSE(seat::isPlainBusAddress("tcp:host=localhost,port=1"));
    EXPECT_FALSE(seat::isPlainBusAddress("nonce-tcp:host=localhost,port=1,noncefile=/a"));
    EXPECT_FALSE(seat::isPlainBusAddress("unix:path=/a;tcp:host=localhost,port=1"));
    EXPECT_FALSE(seat::isPlainBusAddress("autolaunch:"));
    EXPECT_FALSE(seat::isPlainBusAddress("unixexec:path=/bin/sh"));
    EXPECT_FALSE(seat::isPlainBusAddress("unix:path=/a;autolaunch:"));
    EXPECT_FALSE(seat::isPlainBusAddress(""));
    EXPECT_FALSE(seat::isPlainBusAddress("nonsense"));
}

TEST(BusAddress, TheSocketFileComesFromTheFirstEntryThatHasOne) {
    EXPECT_EQ("/run/a b", seat::socketFileOfBusAddress("unix:path=/run/a%20b,guid=0011"));
    EXPECT_EQ("/second", seat::socketFileOfBusAddress("tcp:host=localhost,port=1;unix:path=/second"));
    EXPECT_EQ("", seat::socketFileOfBusAddress("unix:abstract=/tmp/x"));
    EXPECT_EQ("", seat::socketFileOfBusAddress(""));
}

TEST(BusAddress, TheEnvironmentNamesTheBus) {
    const testing_support::PrivateBus bus(testing_support::PrivateBus::Start::Later);

    EXPECT_EQ(bus.address(), seat::busAddressToTry());
}

} // namespace
