#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

#include "tests/machine/support/LitController.h"
#include "tests/machine/support/device_nodes.h"

namespace machine {
namespace {

// The folders of the LEDs whose names end so.
std::vector<std::filesystem::path> leds(const std::string& ending) {
    std::vector<std::filesystem::path> found;
    for (const auto& entry : std::filesystem::directory_iterator("/sys/class/leds"))
        if (entry.path().filename().string().ends_with(ending)) found.push_back(entry.path());
    return found;
}

std::filesystem::path waitForLed(const std::string& ending) {
    EXPECT_TRUE(waitUntil([&] { return !leds(ending).empty(); })) << "no LED *" << ending;
    return leds(ending).empty() ? "" : leds(ending).front();
}

bool write(const std::filesystem::path& file, const std::string& text) {
    std::ofstream stream(file);
    stream << text << std::flush;
    return stream.good();
}

class ThreeLeds : public testing::TestWithParam<Wire> {};
class OneLed : public testing::TestWithParam<Wire> {};

TEST_P(ThreeLeds, TheOlderDriversBrightnessArrivesAsAReport) {
    DualShock4 controller(GetParam());
    const auto red = waitForLed(":red");
    EXPECT_FALSE(waitForEventNode(controller.name()).empty());
    waitForLed(":blue");

    EXPECT_TRUE(write(red / "brightness", "200"));
    EXPECT_TRUE(write(waitForLed(":green") / "brightness", "100"));
    EXPECT_TRUE(write(waitForLed(":blue") / "brightness", "50"));

    EXPECT_TRUE(controller.waitForLight({200, 100, 50}));
    controller.disconnect();
    EXPECT_TRUE(waitUntil([] { return leds(":red").empty(); }));
}

TEST_P(OneLed, TheNewerDriversColourArrivesAsAReport) {
    DualSense controller(GetParam());
    const auto led = waitForLed(":rgb:indicator");
    EXPECT_FALSE(waitForEventNode(controller.name()).empty());

    EXPECT_TRUE(write(led / "multi_intensity", "200 100 50"));
    EXPECT_TRUE(write(led / "brightness", "255"));

    EXPECT_TRUE(controller.waitForLight({200, 100, 50}));
}

TEST(Controllers, TheAddressIsThatOfTheInputDevice) {
    const DualShock4 controller(Wire::Bluetooth, "A0:AB:51:12:34:56");
    const auto node = waitForEventNode(controller.name());

    std::ifstream file("/sys/class/input/" + std::filesystem::path(node).filename().string() + "/device/uniq");
    std::string unique;
    file >> unique;

    EXPECT_EQ(unique, "a0:ab:51:12:34:56");
}

const auto kWires = testing::Values(Wire::Usb, Wire::Bluetooth);
const auto kWireName = [](const auto& wire) { return wire.param == Wire::Usb ? "Usb" : "Bluetooth"; };
INSTANTIATE_TEST_SUITE_P(Wires, ThreeLeds, kWires, kWireName);
INSTANTIATE_TEST_SUITE_P(Wires, OneLed, kWires, kWireName);

} // namespace
} // namespace machine
