// The whole main job on everything that is real but the radios: the page pairs a controller through the system's
// Bluetooth service and lights it through the driver in the kernel; then the keyboard plays.

#include "tests/machine/jvninputd/InputClient.h"
#include "tests/machine/jvninputd/InputService.h"
#include "tests/machine/support/BluetoothWorld.h"
#include "tests/machine/support/LitController.h"
#include "tests/machine/support/LoginSession.h"
#include "tests/machine/support/Program.h"
#include "tests/machine/support/VirtualKeyboard.h"
#include "tests/machine/support/device_nodes.h"

#include <gtest/gtest.h>

namespace machine {
namespace {

constexpr Light kUnchosen{0x00, 0x4E, 0xFD}; // what the page shows where nobody has chosen one
constexpr Light kPicked{0xFD, 0x00, 0x00};
constexpr std::chrono::seconds kPageTimeout{100};

class Page : public testing::Test {
protected:
    Page() {
        world.plug(BluetoothWorld::Radios::Classic);
        world.startService();
        world.prepare();
    }
    // Waits until she has done it.
    ::testing::AssertionResult tell(const std::string& what) {
        page.write(what + "\n");
        return has("done " + what + "\n");
    }
    ::testing::AssertionResult has(const std::string& line) {
        bool said = false;
        waitUntil([&] { return (said = page.output().find(line) != std::string::npos) || page.ended(); }, kPageTimeout);
        if (said) return ::testing::AssertionSuccess();
        return ::testing::AssertionFailure() << page.output() << devices.log();
    }

    BluetoothWorld& world = BluetoothWorld::shared();
    LoginSession& session = LoginSession::ofAnna();
    InputService devices;
    // It would end by itself before she has paired anything; installed, its socket would start it again.
    InputClient stays{devices.socket(), input::Role::observe};
    Program page{{PAGE_USER_PROGRAM, devices.socket()}, kAnna};
};

TEST_F(Page, PairsThroughTheRealServiceLightsThroughTheRealDriverAndMakesTheKeyboardAPad) {
    ASSERT_TRUE(has("ready\n"));

    ASSERT_TRUE(tell("pair"));
    EXPECT_TRUE(world.controllerIs("Paired"));
    EXPECT_TRUE(world.controllerIs("Trusted"));
    EXPECT_TRUE(waitUntil([this] { return !world.isSearching(); }));

    // Its radio is emulated; its device is another one with the same address.
    const DualShock4 controller(Wire::Bluetooth, BluetoothWorld::kController);
    EXPECT_TRUE(controller.waitForLight(kUnchosen)) << page.output() << devices.log();
    ASSERT_TRUE(tell("pick"));
    EXPECT_TRUE(controller.waitForLight(kPicked)) << page.output() << devices.log();

    ASSERT_TRUE(tell("restart"));
    EXPECT_EQ(controller.light(), kPicked);
    ASSERT_TRUE(tell("ambient"));
    EXPECT_EQ(controller.light(), kPicked) << "what is on stays until a game sets another";

    const VirtualKeyboard keyboard;
    ASSERT_TRUE(tell("keyboard"));
    EXPECT_FALSE(waitForEventNode("Joyvane Gamepad").empty()) << page.output() << devices.log();
}

} // namespace
} // namespace machine
