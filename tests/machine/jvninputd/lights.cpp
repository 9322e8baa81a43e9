#include "tests/machine/jvninputd/InputClient.h"
#include "tests/machine/jvninputd/InputService.h"
#include "tests/machine/support/LitController.h"

#include <gtest/gtest.h>

namespace machine {
namespace {

class Lights : public ::testing::Test {
protected:
    void tryBoth(LitController& controller) {
        ASSERT_TRUE(governor.waitForController(controller.address(), true)) << service.log();
        governor.light(controller.address(), 1, 2, 3);
        EXPECT_TRUE(controller.waitForLight({1, 2, 3}));
        governor.light(controller.address(), 200, 100, 0);
        EXPECT_TRUE(controller.waitForLight({200, 100, 0}));
    }

    InputService service;
    InputClient governor{service.socket(), input::Role::govern};
};

TEST_F(Lights, ThreeLightsOfOneColourEach) {
    DualShock4 controller;
    tryBoth(controller);
}

TEST_F(Lights, OneLightOfSeveralColours) {
    DualSense controller;
    tryBoth(controller);
}

TEST_F(Lights, TheStoredColourIsSetWhenTheControllerComesAndWhenItComesBack) {
    governor.light("A0:AB:51:00:00:01", 9, 8, 7);
    {
        DualShock4 controller(Wire::Bluetooth);
        EXPECT_TRUE(controller.waitForLight({9, 8, 7}));
        ASSERT_TRUE(governor.waitForController(controller.address(), true));
    }
    ASSERT_TRUE(governor.waitForController("A0:AB:51:00:00:01", false));
    DualShock4 again(Wire::Bluetooth);
    EXPECT_TRUE(again.waitForLight({9, 8, 7}));
}

TEST_F(Lights, OfTwoControllersTheRightOneIsLit) {
    DualShock4 one(Wire::Bluetooth, "A0:AB:51:00:00:01");
    DualShock4 other(Wire::Bluetooth, "A0:AB:51:00:00:02");
    ASSERT_TRUE(governor.waitForController(one.address(), true));
    ASSERT_TRUE(governor.waitForController(other.address(), true));
    governor.light(other.address(), 5, 6, 7);

    EXPECT_TRUE(other.waitForLight({5, 6, 7}));
    EXPECT_NE(one.light(), (Light{5, 6, 7}));
}

TEST_F(Lights, TheOnlyOneOnACableIsMeantWhenTheAddressIsNotThere) {
    DualShock4 wired(Wire::Usb, "A0:AB:51:00:00:01");
    ASSERT_TRUE(governor.waitForController(wired.address(), true));
    governor.light("A0:AB:51:00:00:09", 5, 6, 7);
    EXPECT_TRUE(wired.waitForLight({5, 6, 7}));
}

TEST_F(Lights, LeftAloneNothingIsSet) {
    DualShock4 controller;
    ASSERT_TRUE(governor.waitForController(controller.address(), true));
    governor.light(controller.address(), 5, 6, 7);
    ASSERT_TRUE(controller.waitForLight({5, 6, 7}));
    governor.leaveLightAlone();
    settle(service.socket());
    const auto reports = controller.lightReports();
    controller.disconnect();
    ASSERT_TRUE(governor.waitForController(controller.address(), false));
    DualShock4 again;
    ASSERT_TRUE(governor.waitForController(again.address(), true));
    settle(service.socket());
    EXPECT_NE(again.light(), (Light{5, 6, 7}));
    EXPECT_EQ(controller.lightReports(), reports);
}

} // namespace
} // namespace machine
