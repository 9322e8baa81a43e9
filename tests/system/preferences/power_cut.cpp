// What is left of a setting when the power is cut.

#include "platform/foundation/NSData.h"
#include "platform/foundation/NSPropertyListSerialization.h"
#include "tests/support/PowerCut.h"
#include "tests/system/preferences/fixture.h"

using namespace seat;

namespace {

using testing_support::PowerCut;

class PreferencesPowerCut : public PreferencesTest {
protected:
    // "none" without a file, "lost" where it cannot be read.
    static std::string value(PowerCut::Files left) {
        const auto found = left.find(domain() + ".plist");
        if (found == left.end()) return "none";
        const auto data = NSData::dataWithVector({found->second.begin(), found->second.end()});
        const id root =
            NSPropertyListSerialization::propertyListWithData_options_format_error(*data, 0, nullptr, nullptr);
        const auto* values = root.objectPointer<NSDictionary>();
        const auto* text = values ? values->objectForKey("key").string() : nullptr;
        return text ? *text : "lost";
    }
    static constexpr PowerCut::Names bothWays[] = {PowerCut::Names::Flushed, PowerCut::Names::AsTheyAre};
};

TEST_F(PreferencesPowerCut, LeavesASettingOnceItIsStored) {
    ASSERT_TRUE(setPreferenceValue(domain(), "key", "old"));
    const PowerCut disk(folder());

    ASSERT_TRUE(setPreferenceValue(domain(), "key", "new"));

    for (const auto names : bothWays) EXPECT_EQ(value(disk.left(names)), "new");
}

TEST_F(PreferencesPowerCut, LeavesTheFirstSettingOnceItIsStored) {
    const PowerCut disk(folder());

    ASSERT_TRUE(setPreferenceValue(domain(), "key", "new"));

    for (const auto names : bothWays) EXPECT_EQ(value(disk.left(names)), "new");
}

TEST_F(PreferencesPowerCut, LeavesTheOldSettingOrTheNewOneAtEveryMomentOfAWrite) {
    ASSERT_TRUE(setPreferenceValue(domain(), "key", "old"));
    PowerCut disk(folder());
    std::vector<std::string> seen;
    disk.atEveryStep([&] {
        for (const auto names : bothWays) seen.push_back(value(disk.left(names)));
    });

    ASSERT_TRUE(setPreferenceValue(domain(), "key", "new"));

    EXPECT_FALSE(seen.empty());
    for (const auto& each : seen) EXPECT_TRUE(each == "old" || each == "new") << each;
}

} // namespace
