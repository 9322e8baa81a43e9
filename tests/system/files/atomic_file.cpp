#include "system/files/atomic_file.h"
#include "system/files/FilePlace.h"
#include "system/files/TemporaryFile.h"

#include "platform/foundation/NSData.h"
#include "platform/foundation/NSError.h"
#include "tests/support/CapturedLog.h"
#include "tests/support/TemporaryFolder.h"

#include <atomic>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/inotify.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace {

using testing::ElementsAre;
using testing::MatchesRegex;
using testing::UnorderedElementsAre;
using testing_support::CapturedLog;
using testing_support::TemporaryFolder;

std::span<const std::uint8_t> spanOf(const std::string& text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

std::string contentsOf(const std::string& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::string> namesIn(const TemporaryFolder& folder) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
        names.push_back(entry.path().filename());
    return names;
}

mode_t modeOf(const std::string& path) {
    struct stat status {};
    ::stat(path.c_str(), &status);
    return status.st_mode & 07777;
}

// No file of this process can grow beyond so many bytes meanwhile: a disk that is full.
class FullDisk {
public:
    explicit FullDisk(rlim_t bytes) {
        ::getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limit{bytes, m_before.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        m_handler = std::signal(SIGXFSZ, SIG_IGN);
    }
    ~FullDisk() {
        ::setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }

private:
    rlimit m_before{};
    void (*m_handler)(int) = nullptr;
};

TEST(AtomicFile, NewFileIsItsOwnersAlone) {
    const TemporaryFolder folder;

    EXPECT_EQ(seat::writeFileAtomically(folder.file("new.plist"), spanOf("contents")), nullptr);

    EXPECT_EQ(contentsOf(folder.file("new.plist")), "contents");
    EXPECT_EQ(modeOf(folder.file("new.plist")), 0600u);
    EXPECT_THAT(namesIn(folder), ElementsAre("new.plist"));
}

TEST(AtomicFile, ExistingFileKeepsItsModeBits) {
    const TemporaryFolder folder;
    std::ofstream(folder.file("old.plist")) << "before, and longer than after";
    ::chmod(folder.file("old.plist").c_str(), 0644);

    EXPECT_EQ(seat::writeFileAtomically(folder.file("old.plist"), spanOf("after")), nullptr);

    EXPECT_EQ(contentsOf(folder.file("old.plist")), "after");
    EXPECT_EQ(modeOf(folder.file("old.plist")), 0644u);
}

TEST(AtomicFile, TemporaryStandsBesideTheFileUnderItsNameAndASuffix) {
    const TemporaryFolder folder;
    const int watch = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    ::inotify_add_watch(watch, folder.path().c_str(), IN_CREATE | IN_MOVED_FROM | IN_MOVED_TO);

    ASSERT_EQ(seat::writeFileAtomically(folder.file("com.quorrel.joyvane.plist"), spanOf("x")), nullptr);

    alignas(inotify_event) char buffer[4096];
    const auto length = ::read(watch, buffer, sizeof buffer);
    ::close(watch);
    std::vector<std::string> events;
    for (ssize_t at = 0; at < length;) {
        const auto* const event = reinterpret_cast<const inotify_event*>(buffer + at);
        const char* const what = event->mask & IN_CREATE ? "made " : event->mask & IN_MOVED_FROM ? "from " : "to ";
        events.push_back(std::string(what) + event->name);
        at += static_cast<ssize_t>(sizeof *event) + event->len;
    }
    EXPECT_THAT(events, ElementsAre(MatchesRegex("made com\\.quorrel\\.joyvane\\.plist\\.saving-[a-z0-9]{6}"),
                                    MatchesRegex("from com\\.quorrel\\.joyvane\\.plist\\.saving-[a-z0-9]{6}"),
                                    "to com.quorrel.joyvane.plist"));
}

TEST(AtomicFile, FullDiskLeavesTheFileAndNoTemporary) {
    const TemporaryFolder folder;
    std::ofstream(folder.file("f")) << "before";
    std::shared_ptr<NSError> error;
    {
        const FullDisk disk(1000);
        error = seat::writeFileAtomically(folder.file("f"), spanOf(std::string(5000, 'x')));
    }

    ASSERT_NE(error, nullptr);
    EXPECT_EQ(error->code(), EFBIG);
    EXPECT_EQ(error->localizedDescription(), "writing " + folder.file("f") + ": File too large");
    EXPECT_EQ(contentsOf(folder.file("f")), "before");
    EXPECT_THAT(namesIn(folder), ElementsAre("f"));
}

TEST(AtomicFile, WhatADeadWriterLeftGoesAndWhatALivingOneWritesAndFilesOfOthersStay) {
    const TemporaryFolder folder;
    const std::string path = folder.file("f");
    std::ofstream(path + ".saving-dead01") << "half";
    std::ofstream(path + ".backup") << "precious";
    std::ofstream(folder.file("g.saving-dead01")) << "of another file";
    std::filesystem::create_directory(path + ".saving-folder");
    const auto place = seat::FilePlace::find(path);
    const seat::TemporaryFile living(place.folder.get(), place.name);

    ASSERT_EQ(seat::writeFileAtomically(path, spanOf("x")), nullptr);

    EXPECT_THAT(namesIn(folder),
                UnorderedElementsAre("f", "f.backup", "g.saving-dead01", "f.saving-folder", living.name()));
}

// Each removes what it takes for a dead writer's while the others make and lock theirs.
TEST(AtomicFile, ManyWritersAtOnceAllSucceed) {
    const TemporaryFolder folder;
    const std::string path = folder.file("f");
    std::atomic<int> failures = 0;
    {
        std::vector<std::jthread> writers;
        for (int i = 0; i < 4; ++i)
            writers.emplace_back([&] {
                for (int j = 0; j < 50; ++j)
                    if (seat::writeFileAtomically(path, spanOf("contents"))) ++failures;
            });
    }

    EXPECT_EQ(failures, 0);
    EXPECT_EQ(contentsOf(path), "contents");
    EXPECT_THAT(namesIn(folder), ElementsAre("f"));
}

TEST(AtomicFile, FolderInItsPlaceIsNotReplaced) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder.file("f"));

    const auto error = seat::writeFileAtomically(folder.file("f"), spanOf("x"));

    ASSERT_NE(error, nullptr);
    EXPECT_EQ(error->code(), EISDIR);
    EXPECT_THAT(namesIn(folder), ElementsAre("f"));
}

TEST(AtomicFile, MissingFolderIsAnError) {
    const TemporaryFolder folder;

    const auto error = seat::writeFileAtomically(folder.file("none/f"), spanOf("x"));

    ASSERT_NE(error, nullptr);
    EXPECT_EQ(error->code(), ENOENT);
}

TEST(AtomicFile, ReaderSeesTheOldOrTheNewFileAndNothingBetween) {
    const TemporaryFolder folder;
    const std::string path = folder.file("f");
    const std::string one(50'000, '1'), two(70'000, '2');
    ASSERT_EQ(seat::writeFileAtomically(path, spanOf(one)), nullptr);
    std::atomic<bool> done = false;
    std::thread writer([&] {
        for (int i = 0; i < 50; ++i) seat::writeFileAtomically(path, spanOf(i % 2 ? one : two));
        done = true;
    });

    int reads = 0;
    while (!done || reads == 0) {
        const std::string seen = contentsOf(path);
        ASSERT_TRUE(seen == one || seen == two) << seen.size();
        ++reads;
    }
    writer.join();
}

TEST(AtomicFile, DataObjectReportsItsFailureOnce) {
    const TemporaryFolder folder;
    const CapturedLog log;
    const auto data = NSData::dataWithBytes(spanOf("x"));
    std::shared_ptr<NSError> error;

    EXPECT_FALSE(data->writeToFile_options_error(folder.file("none/f"), NSDataWritingAtomic, &error));

    ASSERT_NE(error, nullptr);
    EXPECT_EQ(error->code(), ENOENT);
    EXPECT_THAT(log.lines(), ElementsAre(error->localizedDescription()));
}

TEST(AtomicFile, DataObjectAlsoWritesInPlace) {
    const TemporaryFolder folder;
    std::ofstream(folder.file("f")) << "before, and longer";
    struct stat before {
    }, after{};
    ::stat(folder.file("f").c_str(), &before);

    EXPECT_TRUE(NSData::dataWithBytes(spanOf("after"))->writeToFile_options_error(folder.file("f"), 0, nullptr));

    ::stat(folder.file("f").c_str(), &after);
    EXPECT_EQ(contentsOf(folder.file("f")), "after");
    EXPECT_EQ(before.st_ino, after.st_ino);
}

} // namespace
