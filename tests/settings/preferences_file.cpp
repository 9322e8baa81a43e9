#include "settings/preferences_file.h"

#include "system/files/root.h"
#include "system/preferences/preferences_store.h"
#include "tests/support/LoggedLines.h"
#include "tests/support/SystemCalls.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <vector>

namespace {

class AtomicWrite : public testing::Test {
protected:
    void SetUp() override { seat::setRoot(m_root.path()); }
    void TearDown() override { seat::setRoot({}); }
    void put(const std::string& name) {
        const std::filesystem::path folder = m_root.path() + "/var/mobile/Library/Preferences";
        std::filesystem::create_directories(folder);
        std::ofstream(folder / name) << "x";
    }
    const std::string& root() const { return m_root.path(); }

private:
    testing_support::TemporaryFolder m_root;
};

TEST_F(AtomicWrite, IsOverWhereThereIsNoFolder) { EXPECT_FALSE(JVNPreferencesFileStillInAtomicWrite()); }

TEST_F(AtomicWrite, IsOverWhereTheFolderIsEmptyOrHoldsOthers) {
    put("com.quorrel.other.plist");
    EXPECT_FALSE(JVNPreferencesFileStillInAtomicWrite());
}

TEST_F(AtomicWrite, IsOverWhereOnlyTheFileIsThere) {
    put("com.quorrel.joyvane.plist");
    EXPECT_FALSE(JVNPreferencesFileStillInAtomicWrite());
}

TEST_F(AtomicWrite, RunsWhileATemporaryStandsBesideTheFile) {
    put("com.quorrel.joyvane.plist");
    put("com.quorrel.joyvane.plist.a1b2c3");
    EXPECT_TRUE(JVNPreferencesFileStillInAtomicWrite());
    put("com.quorrel.joyvane.plist2");
    EXPECT_TRUE(JVNPreferencesFileStillInAtomicWrite());
}

TEST_F(AtomicWrite, OneTemporaryAloneIsNoReplacement) {
    put("com.quorrel.joyvane.plist.a1b2c3");
    EXPECT_FALSE(JVNPreferencesFileStillInAtomicWrite());
}

TEST_F(AtomicWrite, TwoTemporariesWithoutTheFileAreAWriteUnderWay) {
    put("com.quorrel.joyvane.plist.a1b2c3");
    put("com.quorrel.joyvane.plist.d4e5f6");
    EXPECT_TRUE(JVNPreferencesFileStillInAtomicWrite());
}

TEST_F(AtomicWrite, TakesNoNameThatOnlyHoldsTheFilesName) {
    put("com.quorrel.joyvane.plist");
    put(".com.quorrel.joyvane.plist");
    put("x-com.quorrel.joyvane.plist");
    put("com.quorrel.joyvane.plis");
    EXPECT_FALSE(JVNPreferencesFileStillInAtomicWrite());
}

TEST_F(AtomicWrite, IsOverWhereTheFolderIsNone) {
    const testing_support::LoggedLines log;
    std::filesystem::create_directories(root() + "/var/mobile/Library");
    std::ofstream(root() + "/var/mobile/Library/Preferences") << "x";
    EXPECT_FALSE(JVNPreferencesFileStillInAtomicWrite());
}

TEST_F(AtomicWrite, RunsFromTheFirstByteOfASettingUntilItIsInPlace) {
    using testing_support::SystemCall;
    seat::setPreferenceValue("com.quorrel.joyvane", "key", "before");
    std::vector<bool> runs;
    testing_support::SystemCalls calls;
    for (const auto call : {SystemCall::Lock, SystemCall::Write, SystemCall::Flush})
        calls.before(call, [&](int) { runs.push_back(JVNPreferencesFileStillInAtomicWrite()); });

    seat::setPreferenceValue("com.quorrel.joyvane", "key", "after");

    calls.clear();
    // The lock of the file and that of its temporary, the bytes, the temporary's flush and the folder's.
    EXPECT_EQ(runs, (std::vector<bool>{false, true, true, true, false}));
    EXPECT_FALSE(JVNPreferencesFileStillInAtomicWrite());
}

} // namespace
