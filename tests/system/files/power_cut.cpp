// What is left of a file that is replaced when the power is cut.

#include "system/files/atomic_file.h"
#include "tests/support/PowerCut.h"
#include "tests/support/TemporaryFolder.h"

#include <fstream>
#include <gtest/gtest.h>
#include <set>
#include <unistd.h>

namespace {

using testing_support::PowerCut;
using testing_support::TemporaryFolder;

constexpr PowerCut::Names bothWays[] = {PowerCut::Names::Flushed, PowerCut::Names::AsTheyAre};

bool replace(const TemporaryFolder& folder, const std::string& text) {
    return !seat::writeFileAtomically(folder.file("file"),
                                      {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
}

TEST(PowerCuts, TakeWhatWasNotFlushed) {
    const TemporaryFolder folder;
    std::ofstream(folder.file("before")) << "safe";
    const PowerCut disk(folder.path());

    std::ofstream(folder.file("before")) << "lost";
    std::ofstream(folder.file("after")) << "lost";

    EXPECT_EQ(disk.left(PowerCut::Names::Flushed), (PowerCut::Files{{"before", "safe"}}));
    EXPECT_EQ(disk.left(PowerCut::Names::AsTheyAre), (PowerCut::Files{{"after", ""}, {"before", "safe"}}));
}

TEST(PowerCuts, LeaveAFileOnceItsReplacementIsReported) {
    const TemporaryFolder folder;
    std::ofstream(folder.file("file")) << "old";
    const PowerCut disk(folder.path());

    ASSERT_TRUE(replace(folder, "new"));

    for (const auto names : bothWays) EXPECT_EQ(disk.left(names), (PowerCut::Files{{"file", "new"}}));
}

TEST(PowerCuts, LeaveANewFileOnceItIsReported) {
    const TemporaryFolder folder;
    const PowerCut disk(folder.path());

    ASSERT_TRUE(replace(folder, "new"));

    for (const auto names : bothWays) EXPECT_EQ(disk.left(names), (PowerCut::Files{{"file", "new"}}));
}

TEST(PowerCuts, LeaveTheOldFileOrTheNewOneAtEveryMomentOfAReplacement) {
    const TemporaryFolder folder;
    std::ofstream(folder.file("file")) << "old";
    PowerCut disk(folder.path());
    std::multiset<std::string> seen;
    disk.atEveryStep([&] {
        for (const auto names : bothWays) seen.insert(disk.left(names)["file"]);
    });

    ASSERT_TRUE(replace(folder, "new"));

    EXPECT_EQ(seen.count("old") + seen.count("new"), seen.size());
    EXPECT_GT(seen.count("old"), 0u);
    EXPECT_GT(seen.count("new"), 0u);
}

} // namespace
