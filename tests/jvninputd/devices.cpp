#include "services/jvninputd/lights.h"
#include "services/jvninputd/udev_properties.h"
#include "tests/support/TemporaryFolder.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <map>

using namespace jvninputd;

namespace {

Lookup in(const std::map<std::string, std::string>& values) {
    return [&values](const char* key) -> const char* {
        const auto found = values.find(key);
        return found == values.end() ? nullptr : found->second.c_str();
    };
}

TEST(DeviceDescriptions, AnAddressIsSixPairsOfDigits) {
    EXPECT_EQ(addressFrom("a0:AB:51:00:00:01"), (AddressBytes{0xa0, 0xab, 0x51, 0, 0, 1}));
    for (const char* bad : {"", "a0:ab:51:00:00", "a0:ab:51:00:00:1", "a0:ab:51:00:00:01:02", "a0-ab-51-00-00-01",
                            "g0:ab:51:00:00:01", "a0:ab:51:00:00:0x", "+0:ab:51:00:00:01", " 0:ab:51:00:00:01"})
        EXPECT_FALSE(addressFrom(bad)) << bad;
    EXPECT_FALSE(addressFrom(nullptr));
}

TEST(DeviceDescriptions, UdevSaysWhatItIsAndAtWhichSeat) {
    const std::map<std::string, std::string> keyboard{{"ID_INPUT_KEYBOARD", "1"}};
    EXPECT_TRUE(kindOf(in(keyboard)).keyboard && kindOf(in(keyboard)).atOurSeat);
    const std::map<std::string, std::string> elsewhere{{"ID_INPUT_KEYBOARD", "1"}, {"ID_SEAT", "seat1"}};
    EXPECT_FALSE(kindOf(in(elsewhere)).atOurSeat);
    const std::map<std::string, std::string> nothing;
    EXPECT_FALSE(kindOf(in(nothing)).keyboard || kindOf(in(nothing)).joystick);
}

TEST(DeviceDescriptions, ANameIsMadePrintable) {
    const std::map<std::string, std::string> device{{"name", "Key\x1b[2Jboard\n"}, {"id/bustype", "0003"}};
    EXPECT_EQ(identityOf(in(device)).name, "Key [2Jboard ");
    EXPECT_EQ(identityOf(in(device)).bus, input::Bus::usb);
    const std::map<std::string, std::string> nothing;
    EXPECT_EQ(identityOf(in(nothing)).name, "Keyboard");
}

TEST(DeviceDescriptions, OursAreKnownByNameAndBus) {
    const std::map<std::string, std::string> ours{{"name", "Joyvane Keyboard"}, {"id/bustype", "0006"}};
    const std::map<std::string, std::string> namesake{{"name", "Joyvane Keyboard"}, {"id/bustype", "0003"}};
    EXPECT_TRUE(identityOf(in(ours)).ours);
    EXPECT_FALSE(identityOf(in(namesake)).ours);
}

// A device's folder as the kernel has it.
class LightFolder : public ::testing::Test {
protected:
    void file(const std::string& path, const std::string& text) {
        std::filesystem::create_directories(std::filesystem::path(m_folder + "/leds/" + path).parent_path());
        std::ofstream(m_folder + "/leds/" + path) << text;
    }
    std::string text(const std::string& path) {
        std::string line;
        std::ifstream stream(m_folder + "/leds/" + path);
        std::getline(stream, line);
        return line;
    }

    testing_support::TemporaryFolder m_temporary;
    const std::string m_folder = m_temporary.path();
};

TEST_F(LightFolder, ThreeLightsGetTheirParts) {
    for (const std::string colour : {"red", "green", "blue", "global"}) {
        file("0003:1:" + colour + "/brightness", "0");
        file("0003:1:" + colour + "/max_brightness", "255\n");
    }
    EXPECT_TRUE(hasLight(m_folder));
    EXPECT_TRUE(setLight(m_folder, {1, 2, 255}));
    EXPECT_EQ(text("0003:1:red/brightness"), "1");
    EXPECT_EQ(text("0003:1:green/brightness"), "2");
    EXPECT_EQ(text("0003:1:blue/brightness"), "255");
    EXPECT_EQ(text("0003:1:global/brightness"), "0");
}

TEST_F(LightFolder, OneLightGetsItsPartsInTheDriversOrder) {
    file("input5:rgb:indicator/multi_index", "blue red green\n");
    file("input5:rgb:indicator/multi_intensity", "0 0 0\n");
    file("input5:rgb:indicator/max_brightness", "15\n");
    file("input5:rgb:indicator/brightness", "0");
    EXPECT_TRUE(setLight(m_folder, {255, 0, 128}));
    EXPECT_EQ(text("input5:rgb:indicator/multi_intensity"), "8 15 0");
    EXPECT_EQ(text("input5:rgb:indicator/brightness"), "15");
}

TEST_F(LightFolder, LampsOfOtherKindsAreNoLight) {
    file("input5::capslock/brightness", "0");
    file("input5:white:player-1/brightness", "0");
    EXPECT_FALSE(hasLight(m_folder));
    EXPECT_FALSE(setLight(m_folder, {1, 2, 3}));
    EXPECT_FALSE(hasLight("/no/such/folder"));
}

} // namespace
