#include "services/jvnd/Settings.h"

#include "platform/foundation/NSData.h"

#include <gtest/gtest.h>

using namespace jvnd;

namespace {

using Entries = std::initializer_list<std::pair<const char*, id>>;

std::shared_ptr<NSDictionary> dictionary(Entries entries) {
    const auto result = NSDictionary::dictionary();
    for (const auto& [key, value] : entries) result->setObject_forKey(value, key);
    return result;
}

id number(int value) { return NSNumber::numberWithInt(value); }

class SettingsTest : public ::testing::Test {
protected:
    Settings read(Entries entries) { return readSettings(dictionary(entries).get(), complaint); }
    std::vector<Settings::Binding> keymap(const id& value) { return read({{"JVNKeyboardKeymapKey", value}}).keymap; }
    std::string complaint;
};

TEST_F(SettingsTest, WithoutAFileEverySettingIsThePagesDefault) {
    const auto settings = readSettings(nullptr, complaint);

    EXPECT_EQ(settings.controllerType, JVNControllerTypePS3);
    EXPECT_EQ(settings.connectionMode, 0);
    EXPECT_EQ(settings.color, (Color{0x00, 0x4E, 0xFD}));
    EXPECT_FALSE(settings.isAmbient);
    EXPECT_FALSE(settings.forcesExtended);
    EXPECT_FALSE(settings.address);
    EXPECT_EQ(settings.keymap.size(), 11u);
    EXPECT_EQ(settings.keymap.front(), (Settings::Binding{4, 2})) << "A: D-pad left";
    EXPECT_EQ(complaint, "");
}

TEST_F(SettingsTest, EachSettingIsReadUnderItsKey) {
    const auto settings = read({{"controller_type", number(1)},
                                {"connection_mode", number(1)},
                                {"JVNLEDColorKey", "10fe7F"},
                                {"JVNAmbientColorKey", number(1)},
                                {"JVNForceExtendedGamepad", number(1)},
                                {"PS4BluetoothAddress", NSData::dataWithVector({0, 0xAA, 1, 1, 0, 1})}});

    EXPECT_EQ(settings.controllerType, JVNControllerTypeDualShock4);
    EXPECT_EQ(settings.connectionMode, 1);
    EXPECT_EQ(settings.color, (Color{0x10, 0xFE, 0x7F}));
    EXPECT_TRUE(settings.isAmbient);
    EXPECT_TRUE(settings.forcesExtended);
    ASSERT_TRUE(settings.address);
    EXPECT_EQ(settings.address->text(), "00:AA:01:01:00:01");
}

TEST_F(SettingsTest, AValueThatIsAStringCountsAsItsNumber) {
    const auto settings = read({{"controller_type", "6"}, {"connection_mode", "1"}, {"JVNForceExtendedGamepad", "1"}});

    EXPECT_EQ(settings.controllerType, JVNControllerTypeKeyboard);
    EXPECT_EQ(settings.connectionMode, 1);
    EXPECT_TRUE(settings.forcesExtended);
    EXPECT_EQ(keymap(dictionary({{"4", "7"}})), (std::vector<Settings::Binding>{{4, 7}}));
}

TEST_F(SettingsTest, AnAddressIsSixBytesOfDataOrNone) {
    EXPECT_FALSE(read({{"PS4BluetoothAddress", "abcdef"}}).address);
    EXPECT_FALSE(read({{"PS4BluetoothAddress", NSData::dataWithVector({1, 2, 3, 4, 5})}}).address);
    EXPECT_FALSE(read({{"PS4BluetoothAddress", NSData::dataWithVector({1, 2, 3, 4, 5, 6, 7})}}).address);
}

TEST_F(SettingsTest, AColorIsReadAsThePageReadsIt) {
    EXPECT_EQ(read({{"JVNLEDColorKey", "0x123456"}}).color, (Color{0x12, 0x34, 0x56}));
    EXPECT_EQ(read({{"JVNLEDColorKey", "ff123456"}}).color, (Color{0x12, 0x34, 0x56}));
    EXPECT_EQ(read({{"JVNLEDColorKey", "no colour"}}).color, (Color{0, 0, 0}));
    EXPECT_EQ(read({{"JVNLEDColorKey", number(5)}}).color, (Color{0x00, 0x4E, 0xFD})) << "no string: the default";
}

TEST_F(SettingsTest, AnEmptyKeymapIsEmptyAndOneThatIsNoDictionaryIsTheDefault) {
    EXPECT_TRUE(keymap(NSDictionary::dictionary()).empty());
    EXPECT_EQ(keymap("nonsense").size(), 11u);
}

TEST_F(SettingsTest, EntriesOfTheKeymapThatAreNoneAreLeftOutWithOneSentence) {
    const auto bindings = keymap(dictionary({{"4", number(1)},
                                             {"5", number(0)},
                                             {"6", number(22)},
                                             {"7", number(-3)},
                                             {"x", number(1)},
                                             {"", number(1)},
                                             {"08", number(1)},
                                             {" 9", number(1)},
                                             {"3", number(1)},
                                             {"232", number(1)},
                                             {"65540", number(1)},
                                             {"10", NSDictionary::dictionary()},
                                             {"231", number(21)}}));

    EXPECT_EQ(bindings, (std::vector<Settings::Binding>{{4, 1}, {231, 21}}));
    EXPECT_EQ(complaint, "keymap: 11 entries that are none are left out");
}

} // namespace
