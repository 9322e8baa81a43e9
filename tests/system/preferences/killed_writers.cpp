#include "tests/system/preferences/Child.h"
#include "tests/system/preferences/fixture.h"

#include "system/preferences/write_steps.h"

#include <gmock/gmock.h>

using namespace seat;
using ::testing::ElementsAre;

namespace {

using KilledWriters = PreferencesTest;

constexpr int lastStep = static_cast<int>(PreferencesWriteStep::FolderFlushed);

TEST_F(KilledWriters, WriterKilledAfterAnyStepLeavesTheOldFileOrTheNewOne) {
    for (int step = 0; step <= lastStep; ++step) {
        if (step == static_cast<int>(PreferencesWriteStep::MovedAside)) continue;
        std::filesystem::remove_all(folder());
        setPreferenceValue(domain(), "before", "1");

        const int status = Child({WRITER_PROGRAM, root(), "die", domain(), "key", std::to_string(step)}).wait();
        ASSERT_TRUE(WIFSIGNALED(status)) << "step " << step;

        const auto values = stored();
        ASSERT_TRUE(values) << "step " << step;
        EXPECT_EQ(values->objectForKey("before"), id("1"));
        EXPECT_EQ(bool(values->objectForKey("key")), step >= static_cast<int>(PreferencesWriteStep::Renamed));
    }
}

TEST_F(KilledWriters, WriterKilledWithADamagedFileLosesNothingOfIt) {
    for (int step = 0; step <= lastStep; ++step) {
        std::filesystem::remove_all(folder());
        std::filesystem::create_directories(folder());
        write(file(), "damaged");

        Child({WRITER_PROGRAM, root(), "die", domain(), "key", std::to_string(step)}).wait();

        const std::string aside = folder() + "/" + domain() + ".damaged-1";
        EXPECT_TRUE(contents(file()) == "damaged" || contents(aside) == "damaged") << "step " << step;
    }
}

TEST_F(KilledWriters, WhatADeadWriterLeftBehindGoesWithTheNextWrite) {
    setPreferenceValue(domain(), "before", "1");
    Child({WRITER_PROGRAM, root(), "die", domain(), "key",
           std::to_string(static_cast<int>(PreferencesWriteStep::TemporaryHalfWritten))})
        .wait();
    ASSERT_EQ(namesLikeTheFile().size(), 2u);

    EXPECT_EQ(preferenceValue(domain(), "before"), id("1"));
    EXPECT_TRUE(setPreferenceValue(domain(), "after", "2"));

    EXPECT_THAT(namesLikeTheFile(), ElementsAre(domain() + ".plist"));
}

TEST_F(KilledWriters, WhatADeadWriterLeftBehindGoesWithTheFirstReadOfAnotherProcess) {
    setPreferenceValue(domain(), "before", "1");
    Child({WRITER_PROGRAM, root(), "die", domain(), "key",
           std::to_string(static_cast<int>(PreferencesWriteStep::TemporaryHalfWritten))})
        .wait();
    write(file() + ".saving-dead01", "half");
    ASSERT_EQ(namesLikeTheFile().size(), 3u);

    EXPECT_EQ(Child({WRITER_PROGRAM, root(), "get", domain(), "before"}).line(), "1");

    EXPECT_THAT(namesLikeTheFile(), ElementsAre(domain() + ".plist"));
}

TEST_F(KilledWriters, AReaderLeavesALivingWritersTemporary) {
    setPreferenceValue(domain(), "before", "1");
    write(file() + ".writing-00000000", "half");
    Child holder({WRITER_PROGRAM, root(), "hold", domain()});
    ASSERT_EQ(holder.line(), "held");

    EXPECT_EQ(Child({WRITER_PROGRAM, root(), "get", domain(), "before"}).line(), "1");

    EXPECT_EQ(namesLikeTheFile().size(), 2u);
}

TEST_F(KilledWriters, FilesOfOthersBesideItAreLeftAlone) {
    write(file() + ".backup", "precious");
    write(file() + ".abc123", "another program's temporary");

    setPreferenceValue(domain(), "key", "value");

    EXPECT_EQ(contents(file() + ".backup"), "precious");
    EXPECT_EQ(contents(file() + ".abc123"), "another program's temporary");
}

TEST_F(KilledWriters, LockOfADeadWriterIsFree) {
    Child({WRITER_PROGRAM, root(), "die", domain(), "key", "0"}).wait();

    EXPECT_TRUE(setPreferenceValue(domain(), "key", "value"));
}

} // namespace
