// A write whose calls of the system fail, are interrupted, or find that another program was there in between.

#include "tests/support/SystemCalls.h"
#include "tests/system/preferences/fixture.h"

#include "platform/foundation/NSData.h"
#include "platform/foundation/NSPropertyListSerialization.h"
#include "system/files/atomic_file.h"

#include <cerrno>
#include <gmock/gmock.h>

using namespace seat;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using testing_support::SystemCall;
using testing_support::SystemCalls;

namespace {

constexpr SystemCall interruptible[] = {SystemCall::Open, SystemCall::Read,       SystemCall::Write,
                                        SystemCall::Lock, SystemCall::ChangeMode, SystemCall::Flush};
// Those without which nothing new may be put in the file's place.
constexpr SystemCall needed[] = {SystemCall::Open,       SystemCall::Read,  SystemCall::Write, SystemCall::Lock,
                                 SystemCall::ChangeMode, SystemCall::Flush, SystemCall::Rename};

class FailingCalls : public PreferencesTest {
protected:
    // Of one write, without any that fails.
    static int countOf(SystemCalls& calls, SystemCall call) {
        calls.clear();
        set("counted", "0");
        return calls.count(call);
    }
    // As a program that does not know the lock.
    void writeAsAnotherProgram(const std::string& key, const std::string& value) const {
        auto theirs = stored();
        if (!theirs) theirs = NSMutableDictionary::dictionary();
        theirs->setObject_forKey(value, key);
        const auto data =
            NSPropertyListSerialization::dataWithPropertyList_format_options_error(id(theirs), 200, 0, nullptr);
        ASSERT_EQ(writeFileAtomically(file(), data->bytes()), nullptr);
    }
    // However often it is called, it acts once.
    static std::function<void()> once(std::function<void()> act) {
        return [act = std::move(act), isDone = std::make_shared<bool>()] {
            if (!std::exchange(*isDone, true)) act();
        };
    }
    // Calls `act` before the temporary file is flushed: the file has been read, and its successor written.
    static void beforeFlush(SystemCalls& calls, std::function<void()> act) {
        calls.before(SystemCall::Flush, [act, isActing = std::make_shared<bool>()](int descriptor) {
            struct stat status {};
            if (*isActing || fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) return;
            *isActing = true;
            act();
            *isActing = false;
        });
    }
};

TEST_F(FailingCalls, AnInterruptionOfAnyCallIsNotNoticed) {
    set("before", "1");
    SystemCalls calls;
    int interrupted = 0;
    for (const auto call : interruptible) {
        const int count = countOf(calls, call);
        for (int n = 1; n <= count; ++n)
            for (const int times : {1, 3}) {
                calls.clear();
                calls.failAt(call, n, EINTR, times);
                const std::string value = std::to_string(++interrupted);
                EXPECT_TRUE(set("key", value)) << "call " << int(call) << " number " << n;
                calls.clear();
                EXPECT_EQ(stored()->objectForKey("key"), id(value));
            }
    }
    EXPECT_GT(interrupted, 20);
    EXPECT_EQ(stored()->objectForKey("before"), id("1"));
    EXPECT_THAT(log(), IsEmpty());
    EXPECT_THAT(namesLikeTheFile(), ElementsAre(domain() + ".plist"));
}

TEST_F(FailingCalls, AFailureOfAnyCallLeavesTheOldFileOrTheNewOneAndSaysWhich) {
    set("before", "1");
    SystemCalls calls;
    int failed = 0;
    for (const auto call : needed) {
        const int count = countOf(calls, call);
        EXPECT_GT(count, 0) << int(call);
        for (int n = 1; n <= count; ++n) {
            calls.clear();
            const std::string before = contents(file());
            calls.failAt(call, n, EIO);
            const std::string value = std::to_string(++failed);

            const bool isStored = set("key", value);

            calls.clear();
            if (isStored)
                EXPECT_EQ(stored()->objectForKey("key"), id(value));
            else
                EXPECT_EQ(contents(file()), before);
            EXPECT_EQ(preferenceValue(domain(), "key"), stored()->objectForKey("key"));
            EXPECT_THAT(namesLikeTheFile(), ElementsAre(domain() + ".plist"));
            EXPECT_EQ(stored()->objectForKey("before"), id("1"));
        }
    }
    EXPECT_GT(failed, 15);
}

TEST_F(FailingCalls, AWriteThatFailsIsLoggedInOneLineWithTheReason) {
    set("key", "old");
    SystemCalls calls;
    calls.fail(SystemCall::Flush, EIO);

    EXPECT_FALSE(set("key", "new"));

    EXPECT_THAT(log(), ElementsAre("writing the preferences " + domain() +
                                   ": Input/output error; what was to be stored is lost"));
    EXPECT_EQ(preferenceValue(domain(), "key"), id("old"));
}

TEST_F(FailingCalls, AFolderThatCannotBeFlushedIsLoggedAndTheValueIsThere) {
    set("key", "old");
    SystemCalls calls;
    calls.failAt(SystemCall::Flush, 2, EIO);

    EXPECT_TRUE(set("key", "new"));

    EXPECT_THAT(log(), ElementsAre(HasSubstr("flushing the folder")));
}

TEST_F(FailingCalls, AWriteUnderWayShowsByItsName) {
    set("key", "value");
    SystemCalls calls;
    std::vector<std::string> seen;
    beforeFlush(calls, [&] { seen = namesLikeTheFile(); });

    set("key", "other");

    EXPECT_EQ(seen.size(), 2u);
}

TEST_F(FailingCalls, WhatAnotherProgramWritesMeanwhileIsKept) {
    set("ours", "1");
    SystemCalls calls;
    beforeFlush(calls, once([this] { writeAsAnotherProgram("theirs", "2"); }));

    EXPECT_TRUE(set("ours", "3"));

    EXPECT_EQ(stored()->objectForKey("theirs"), id("2"));
    EXPECT_EQ(stored()->objectForKey("ours"), id("3"));
    EXPECT_THAT(namesLikeTheFile(), ElementsAre(domain() + ".plist"));
}

TEST_F(FailingCalls, FileThatAnotherProgramKeepsChangingIsLeftToIt) {
    set("ours", "0");
    SystemCalls calls;
    int writes = 0;
    beforeFlush(calls, [&] { writeAsAnotherProgram("theirs", std::to_string(++writes)); });

    EXPECT_FALSE(set("ours", "1"));

    EXPECT_THAT(log(), ElementsAre(HasSubstr("keeps changing")));
    EXPECT_EQ(stored()->objectForKey("theirs"), id(std::to_string(writes)));
}

TEST_F(FailingCalls, ALockWhoseFileIsRemovedMeanwhileIsTakenAnew) {
    set("ours", "1");
    SystemCalls calls;
    beforeFlush(calls, once([this] { std::filesystem::remove(folder() + "/.lock." + domain()); }));

    EXPECT_TRUE(set("ours", "2"));

    EXPECT_EQ(stored()->objectForKey("ours"), id("2"));
    EXPECT_TRUE(std::filesystem::exists(folder() + "/.lock." + domain()));
}

TEST_F(FailingCalls, DamagedFileThatIsRepairedMeanwhileIsNotMovedAside) {
    write(file(), "damaged");
    SystemCalls calls;
    const auto repair = once([this] {
        std::filesystem::remove(file());
        writeAsAnotherProgram("theirs", "2");
    });
    // Its bytes have been asked for; before it can be moved another program has written a good one.
    calls.before(SystemCall::Read, [&](int) { repair(); });

    EXPECT_TRUE(set("ours", "1"));

    EXPECT_EQ(stored()->objectForKey("theirs"), id("2"));
    EXPECT_EQ(stored()->objectForKey("ours"), id("1"));
    EXPECT_THAT(namesLikeTheFile(), ElementsAre(domain() + ".plist"));
}

} // namespace
