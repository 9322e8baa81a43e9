// What is left of the settings when the power is cut.

#include "platform/foundation/NSData.h"
#include "platform/foundation/NSPropertyListSerialization.h"
#include "tests/support/PowerCut.h"
#include "tests/system/preferences/fixture.h"

#include <array>
#include <atomic>
#include <set>
#include <thread>

using namespace seat;

namespace {

using testing_support::PowerCut;

class PreferencesPowerCut : public PreferencesTest {
protected:
    // "none" without a file, "lost" where it cannot be read.
    static std::string value(PowerCut::Files left, const char* key = "key") {
        const auto found = left.find(domain() + ".plist");
        if (found == left.end()) return "none";
        const auto data = NSData::dataWithVector({found->second.begin(), found->second.end()});
        std::shared_ptr<NSError> error;
        const id root =
            NSPropertyListSerialization::propertyListWithData_options_format_error(*data, 0, nullptr, &error);
        const auto* values = root.objectPointer<NSDictionary>();
        const auto* text = values ? values->objectForKey(key).string() : nullptr;
        return text ? *text : "lost";
    }
    static constexpr PowerCut::Names bothWays[] = {PowerCut::Names::Flushed, PowerCut::Names::AsTheyAre};
    static constexpr int saves = 200;
};

TEST_F(PreferencesPowerCut, LeavesASettingOnceItIsStored) {
    ASSERT_TRUE(set("key", "old"));
    const PowerCut disk(folder());

    ASSERT_TRUE(set("key", "new"));

    for (const auto names : bothWays) EXPECT_EQ(value(disk.left(names)), "new");
}

TEST_F(PreferencesPowerCut, LeavesTheFirstSettingOnceItIsStored) {
    const PowerCut disk(folder());

    ASSERT_TRUE(set("key", "new"));

    for (const auto names : bothWays) EXPECT_EQ(value(disk.left(names)), "new");
}

TEST_F(PreferencesPowerCut, LeavesTheOldSettingOrTheNewOneAtEveryStepOfTwoHundredSaves) {
    ASSERT_TRUE(set("key", "0"));
    PowerCut disk(folder());
    std::string before;
    std::string after;
    int cuts = 0;
    disk.atEveryStep([&] {
        for (const auto names : bothWays) {
            const std::string seen = value(disk.left(names));
            EXPECT_TRUE(seen == before || seen == after) << seen << " where " << before << " becomes " << after;
            ++cuts;
        }
    });

    for (int i = 1; i <= saves; ++i) {
        before = std::to_string(i - 1);
        after = std::to_string(i);
        ASSERT_TRUE(set("key", after));
        for (const auto names : bothWays) EXPECT_EQ(value(disk.left(names)), after);
    }

    EXPECT_GE(cuts, saves * 3 * 2);
}

// Each counts its own key up. What is left has for each the value that was stored last, or the next one.
TEST_F(PreferencesPowerCut, LeavesWhatEachOfTwoWritersHadStoredAtEveryStepOfTwoHundredSaves) {
    ASSERT_TRUE(set("0", "0"));
    ASSERT_TRUE(set("1", "0"));
    PowerCut disk(folder());
    std::array<std::atomic<int>, 2> stored{};
    std::atomic<int> cuts = 0;
    disk.atEveryStep([&] {
        for (const auto names : bothWays)
            for (std::size_t writer = 0; writer < 2; ++writer) {
                const int least = stored[writer];
                const std::string seen = value(disk.left(names), writer == 0 ? "0" : "1");
                const int most = stored[writer] + 1;
                ASSERT_TRUE(seen != "none" && seen != "lost") << seen;
                EXPECT_TRUE(std::stoi(seen) >= least && std::stoi(seen) <= most) << seen << " after " << least;
                ++cuts;
            }
    });
    const auto write = [&](std::size_t writer) {
        for (int i = 1; i <= saves; ++i) {
            std::atomic<PreferenceWrite> how = PreferenceWrite::Pending;
            const auto ended = [&](PreferenceWrite outcome) {
                how = outcome;
                how.notify_one();
            };
            const auto now = setPreferenceValue(domain(), std::to_string(writer), std::to_string(i), ended);
            if (now == PreferenceWrite::Pending)
                how.wait(PreferenceWrite::Pending);
            else
                how = now;
            EXPECT_EQ(how, PreferenceWrite::Stored);
            stored[writer] = i;
        }
    };
    {
        const std::jthread other([&] { write(1); });
        write(0);
    }
    disk.atEveryStep({});

    EXPECT_GE(cuts, saves * 3 * 2);
    for (const auto names : bothWays)
        for (const char* const key : {"0", "1"}) EXPECT_EQ(value(disk.left(names), key), std::to_string(saves));
}

} // namespace
