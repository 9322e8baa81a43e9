#include "desktop/mail/MailDrafts.h"

#include "kit/dispatch/ManualClock.h"
#include "system/files/root.h"
#include "system/run_loop/PollLoop.h"
#include "tests/support/LoggedLines.h"

#include "tests/support/TemporaryFolder.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <sys/stat.h>

namespace {

namespace fs = std::filesystem;

class MailDrafts : public testing::Test {
protected:
    MailDrafts() { seat::setRoot(root.path()); }
    ~MailDrafts() override { seat::setRoot(""); }

    static std::string contentsOf(const std::string& path) {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    // What a mail program does, as far as we can tell.
    void readAsMailProgram(const std::string& path) {
        contentsOf(path);
        loop.runReady();
    }
    // Another process's draft.
    std::string foreignDraft(const std::string& name, int ageInSeconds) {
        const std::string path = root.file("tmp/mail/" + name);
        fs::create_directories(fs::path(path).parent_path());
        std::ofstream(path) << "a message";
        fs::last_write_time(path, fs::file_time_type::clock::now() - std::chrono::seconds(ageInSeconds));
        return path;
    }
    static mode_t modeOf(const std::string& path) {
        struct ::stat status {};
        ::stat(path.c_str(), &status);
        return status.st_mode & 07777;
    }

    testing_support::TemporaryFolder root;
    testing_support::LoggedLines log;
    seat::PollLoop loop;
    seat::MailDrafts& drafts = seat::MailDrafts::shared();
};

TEST_F(MailDrafts, IsAFileOfItsOwnBelowTheRootForThisUserAlone) {
    const std::string first = drafts.save("one");
    const std::string second = drafts.save("two");

    for (const auto& path : {first, second}) {
        EXPECT_TRUE(path.starts_with(root.path() + "/")) << path;
        EXPECT_TRUE(path.ends_with(".eml")) << path;
        EXPECT_EQ(modeOf(path), 0600u);
    }
    EXPECT_EQ(contentsOf(first), "one");
    EXPECT_EQ(contentsOf(second), "two");
    EXPECT_EQ(modeOf(fs::path(first).parent_path()), 0700u);
    drafts.discard(first);
    drafts.discard(second);
}

TEST_F(MailDrafts, GoesAMinuteAfterItWasReadLast) {
    seat::ManualClock clock;
    const std::string path = drafts.save("a");

    clock.advance(3600);
    EXPECT_TRUE(fs::exists(path)) << "nobody has read it";
    readAsMailProgram(path);
    clock.advance(59);
    readAsMailProgram(path);
    clock.advance(59);
    EXPECT_TRUE(fs::exists(path));
    clock.advance(2);
    EXPECT_FALSE(fs::exists(path));
}

TEST_F(MailDrafts, GoesAtOnceWhenNobodyWillReadIt) {
    const std::string path = drafts.save("a");

    drafts.discard(path);

    EXPECT_FALSE(fs::exists(path));
    EXPECT_EQ(log.count("could not be removed"), 0u);
}

TEST_F(MailDrafts, AtTheEndThoseThatWereReadGoAndTheOthersStay) {
    const std::string read = drafts.save("a");
    const std::string unread = drafts.save("b");
    readAsMailProgram(read);

    drafts.removeRead();

    EXPECT_FALSE(fs::exists(read));
    EXPECT_TRUE(fs::exists(unread)) << "the mail program may still be starting";
    drafts.discard(unread);
}

TEST_F(MailDrafts, ALaterStartRemovesWhatWasForgottenAndNothingElse) {
    const std::string forgotten = foreignDraft("message-abcdef.eml", 3600);
    const std::string fresh = foreignDraft("message-ghijkl.eml", 60);
    const std::string other = foreignDraft("holiday.eml", 3600);

    drafts.removeForgotten();

    EXPECT_FALSE(fs::exists(forgotten));
    EXPECT_TRUE(fs::exists(fresh));
    EXPECT_TRUE(fs::exists(other));
}

TEST_F(MailDrafts, WithoutAnyThereIsNothingToForget) {
    drafts.removeForgotten();
    EXPECT_FALSE(fs::exists(root.file("tmp")));
}

TEST_F(MailDrafts, WhatCannotBeWrittenIsLogged) {
    std::ofstream(root.file("tmp")) << "a file where the folder should be";

    EXPECT_EQ(drafts.save("a"), "");

    EXPECT_EQ(log.count("the message could not be written"), 1u);
}

} // namespace
