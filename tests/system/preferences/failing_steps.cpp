#include "tests/system/preferences/fixture.h"

#include "platform/foundation/NSData.h"
#include "platform/foundation/NSPropertyListSerialization.h"
#include "system/preferences/write_steps.h"

#include <cerrno>
#include <gmock/gmock.h>
#include <set>

using namespace seat;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

namespace {

class FailingSteps : public PreferencesTest {
protected:
    ~FailingSteps() override { setPreferencesWriteProbe({}); }

    static void failAt(PreferencesWriteStep step, int number) {
        setPreferencesWriteProbe([=](PreferencesWriteStep done) { return done == step ? number : 0; });
    }
    void writeAsAnotherProgram(const char* key, const char* value) const {
        auto theirs = stored();
        if (!theirs) theirs = NSMutableDictionary::dictionary();
        theirs->setObject_forKey(value, key);
        NSPropertyListSerialization::dataWithPropertyList_format_options_error(id(theirs), 200, 0, nullptr)
            ->writeToFile_options_error("/var/mobile/Library/Preferences/" + domain() + ".plist", NSDataWritingAtomic,
                                        nullptr);
    }
};

TEST_F(FailingSteps, FailureBeforeTheRenameLeavesFileAndFolderAsTheyWere) {
    setPreferenceValue(domain(), "old", "1");
    const std::string before = contents(file());
    using enum PreferencesWriteStep;
    for (const auto step :
         {Locked, ReadAfresh, TemporaryCreated, TemporaryHalfWritten, TemporaryWritten, TemporaryFlushed}) {
        clearLog();
        failAt(step, EIO);

        EXPECT_FALSE(setPreferenceValue(domain(), "new", "2"));

        EXPECT_EQ(contents(file()), before);
        EXPECT_THAT(namesLikeTheFile(), ElementsAre(domain() + ".plist"));
        EXPECT_THAT(log(), ElementsAre(HasSubstr("Input/output error")));
        EXPECT_EQ(preferenceValue(domain(), "new"), id("2"));
    }
    setPreferencesWriteProbe({});
    EXPECT_TRUE(storeKeptPreferences());
    EXPECT_EQ(stored()->objectForKey("new"), id("2"));
}

TEST_F(FailingSteps, StepsComeInTheAgreedOrder) {
    std::vector<PreferencesWriteStep> steps;
    setPreferencesWriteProbe([&](PreferencesWriteStep done) {
        steps.push_back(done);
        return 0;
    });

    setPreferenceValue(domain(), "key", "value");

    using enum PreferencesWriteStep;
    EXPECT_THAT(steps, ElementsAre(Locked, ReadAfresh, TemporaryCreated, TemporaryHalfWritten, TemporaryWritten,
                                   TemporaryFlushed, Renamed, FolderFlushed));
}

TEST_F(FailingSteps, WriteUnderWayShowsByItsName) {
    setPreferenceValue(domain(), "key", "value");
    std::size_t most = 0;
    setPreferencesWriteProbe([&](PreferencesWriteStep) {
        most = std::max(most, namesLikeTheFile().size());
        return 0;
    });

    setPreferenceValue(domain(), "key", "other");

    EXPECT_EQ(most, 2u);
}

TEST_F(FailingSteps, WhatAnotherProgramWritesMeanwhileIsKept) {
    setPreferenceValue(domain(), "ours", "1");
    bool isDone = false;
    setPreferencesWriteProbe([&](PreferencesWriteStep done) {
        if (done == PreferencesWriteStep::TemporaryFlushed && !std::exchange(isDone, true))
            writeAsAnotherProgram("theirs", "2");
        return 0;
    });

    EXPECT_TRUE(setPreferenceValue(domain(), "ours", "3"));

    EXPECT_EQ(stored()->objectForKey("theirs"), id("2"));
    EXPECT_EQ(stored()->objectForKey("ours"), id("3"));
    EXPECT_THAT(namesLikeTheFile(), ElementsAre(domain() + ".plist"));
}

TEST_F(FailingSteps, FileThatAnotherProgramKeepsChangingIsLeftToIt) {
    int writes = 0;
    setPreferencesWriteProbe([&](PreferencesWriteStep done) {
        if (done == PreferencesWriteStep::TemporaryFlushed)
            writeAsAnotherProgram("theirs", std::to_string(++writes).c_str());
        return 0;
    });

    EXPECT_FALSE(setPreferenceValue(domain(), "ours", "1"));

    EXPECT_THAT(log(), ElementsAre(HasSubstr("keeps changing")));
    EXPECT_EQ(stored()->objectForKey("theirs"), id(std::to_string(writes)));
}

TEST_F(FailingSteps, DamagedFileThatIsRepairedMeanwhileIsNotMovedAside) {
    write(file(), "damaged");
    setPreferencesWriteProbe([&](PreferencesWriteStep done) {
        if (done == PreferencesWriteStep::ReadAfresh && !stored()) {
            std::filesystem::remove(file());
            writeAsAnotherProgram("theirs", "2");
        }
        return 0;
    });

    EXPECT_TRUE(setPreferenceValue(domain(), "ours", "1"));

    EXPECT_EQ(stored()->objectForKey("theirs"), id("2"));
    EXPECT_EQ(stored()->objectForKey("ours"), id("1"));
    EXPECT_THAT(namesLikeTheFile(), ElementsAre(domain() + ".plist"));
}

} // namespace
