#include "tests/system/preferences/Child.h"
#include "tests/system/preferences/fixture.h"

#include <gmock/gmock.h>

using namespace seat;
using ::testing::ElementsAre;
using ::testing::Gt;
using ::testing::SizeIs;

namespace {

class KilledWriters : public PreferencesTest {
protected:
    // Another process writes KEY and is killed before its `n`th call of the system. False when it came to its end.
    bool writerDiesBefore(int n) const {
        return WIFSIGNALED(Child({WRITER_PROGRAM, root(), "die", domain(), "key", std::to_string(n)}).wait());
    }
    // A temporary file without its writer.
    void leaveHalfAFile() const {
        for (int n = 1; namesLikeTheFile().size() < 2; ++n) ASSERT_TRUE(writerDiesBefore(n));
    }
};

TEST_F(KilledWriters, WriterKilledBeforeAnyCallLeavesTheOldFileOrTheNewOne) {
    int died = 0;
    bool isNew = false;
    for (; !isNew || died == 0; ++died) {
        std::filesystem::remove_all(folder());
        set("before", "1");
        const bool isKilled = writerDiesBefore(died + 1);

        const auto values = stored();
        ASSERT_TRUE(values) << "call " << died + 1;
        EXPECT_EQ(values->objectForKey("before"), id("1"));
        isNew = bool(values->objectForKey("key"));
        EXPECT_TRUE(isNew || isKilled);
        EXPECT_TRUE(set("after", "2"));
        EXPECT_THAT(namesLikeTheFile(), ElementsAre(domain() + ".plist"));
        if (!isKilled) break;
        isNew = false;
    }
    EXPECT_GT(died, 10);
}

TEST_F(KilledWriters, WriterKilledWithADamagedFileLosesNothingOfIt) {
    for (int n = 1;; ++n) {
        std::filesystem::remove_all(folder());
        std::filesystem::create_directories(folder());
        write(file(), "damaged");

        const bool isKilled = writerDiesBefore(n);

        const std::string aside = folder() + "/" + domain() + ".damaged-1";
        EXPECT_TRUE(contents(file()) == "damaged" || contents(aside) == "damaged") << "call " << n;
        if (!isKilled) break;
    }
}

TEST_F(KilledWriters, WhatADeadWriterLeftBehindGoesWithTheNextWrite) {
    set("before", "1");
    leaveHalfAFile();

    EXPECT_EQ(preferenceValue(domain(), "before"), id("1"));
    EXPECT_TRUE(set("after", "2"));

    EXPECT_THAT(namesLikeTheFile(), ElementsAre(domain() + ".plist"));
}

TEST_F(KilledWriters, WhatADeadWriterLeftBehindGoesWithTheFirstReadOfAnotherProcess) {
    set("before", "1");
    leaveHalfAFile();

    EXPECT_EQ(Child({WRITER_PROGRAM, root(), "get", domain(), "before"}).line(), "1");

    EXPECT_THAT(namesLikeTheFile(), ElementsAre(domain() + ".plist"));
}

TEST_F(KilledWriters, AReaderLeavesALivingWritersTemporary) {
    set("before", "1");
    const Child writer({WRITER_PROGRAM, root(), "stay", domain(), "key"});
    ASSERT_EQ(writer.line(), "writing");
    ASSERT_THAT(namesLikeTheFile(), SizeIs(2));

    EXPECT_EQ(Child({WRITER_PROGRAM, root(), "get", domain(), "before"}).line(), "1");

    EXPECT_THAT(namesLikeTheFile(), SizeIs(2));
}

TEST_F(KilledWriters, FilesOfOthersBesideItAreLeftAlone) {
    write(file() + ".backup", "precious");
    write(file() + ".abc123", "another program's temporary");

    set("key", "value");

    EXPECT_EQ(contents(file() + ".backup"), "precious");
    EXPECT_EQ(contents(file() + ".abc123"), "another program's temporary");
}

TEST_F(KilledWriters, LockOfADeadWriterIsFree) {
    set("before", "1");
    for (int n = 1; writerDiesBefore(n); ++n) EXPECT_TRUE(set("key", "value")) << n;
}

} // namespace
