#include "tests/system/preferences/fixture.h"

#include <gmock/gmock.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include <chrono>
#include <csignal>

using namespace seat;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

namespace {

using FilesInTheWay = PreferencesTest;

class Stopwatch {
public:
    double milliseconds() const {
        return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - m_start).count();
    }

private:
    std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
};

TEST_F(FilesInTheWay, FolderInTheFilesPlaceIsLeftAlone) {
    std::filesystem::create_directory(file());

    EXPECT_FALSE(preferenceValue(domain(), "key"));
    EXPECT_FALSE(preferenceValue(domain(), "key"));
    EXPECT_THAT(log(), ElementsAre(HasSubstr("a folder is in its place")));
    clearLog();

    EXPECT_FALSE(set("key", "value"));
    EXPECT_THAT(log(), ElementsAre(HasSubstr("a folder is in its place")));
    EXPECT_FALSE(preferenceValue(domain(), "key"));
    EXPECT_TRUE(std::filesystem::is_directory(file()));
}

TEST_F(FilesInTheWay, PipeInTheFilesPlaceDoesNotHang) {
    ASSERT_EQ(mkfifo(file().c_str(), 0600), 0);
    const Stopwatch time;

    EXPECT_FALSE(preferenceValue(domain(), "key"));
    EXPECT_FALSE(set("key", "value"));

    EXPECT_LT(time.milliseconds(), 100);
    EXPECT_EQ(log().size(), 2u);
    EXPECT_FALSE(preferenceValue(domain(), "key"));
}

TEST_F(FilesInTheWay, SocketInTheFilesPlaceIsLeftAlone) {
    const std::string shortPath = "/tmp/joyvane-" + std::to_string(getpid());
    sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
    shortPath.copy(address.sun_path, sizeof address.sun_path - 1);
    const int descriptor = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    ASSERT_EQ(bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    ASSERT_EQ(rename(shortPath.c_str(), file().c_str()), 0);

    EXPECT_FALSE(preferenceValue(domain(), "key"));
    EXPECT_FALSE(set("key", "value"));

    EXPECT_TRUE(std::filesystem::is_socket(file()));
    close(descriptor);
}

TEST_F(FilesInTheWay, PipeInTheLocksPlaceDoesNotHang) {
    ASSERT_EQ(mkfifo((folder() + "/.lock." + domain()).c_str(), 0600), 0);
    const Stopwatch time;

    set("key", "value");

    EXPECT_LT(time.milliseconds(), 100);
    EXPECT_EQ(preferenceValue(domain(), "key"), id("value"));
}

TEST_F(FilesInTheWay, UnreadableFileIsNeitherReadNorReplaced) {
    set("theirs", "1");
    const std::string before = contents(file());
    ASSERT_EQ(chmod(file().c_str(), 0), 0);
    {
        const WithoutPrivileges scope(root());
        EXPECT_FALSE(preferenceValue(domain(), "theirs"));
        EXPECT_FALSE(set("ours", "2"));
        EXPECT_FALSE(preferenceValue(domain(), "ours"));
    }
    ASSERT_EQ(chmod(file().c_str(), 0600), 0);
    EXPECT_EQ(contents(file()), before);
    EXPECT_THAT(log(), ElementsAre(HasSubstr("Permission denied"), HasSubstr("is lost")));
}

TEST_F(FilesInTheWay, ReadOnlyFolderRefusesTheValue) {
    set("theirs", "1");
    std::filesystem::remove(folder() + "/.lock." + domain());
    {
        const WithoutPrivileges scope(root());
        ASSERT_EQ(chmod(folder().c_str(), 0555), 0);
        EXPECT_FALSE(set("ours", "2"));
        EXPECT_FALSE(preferenceValue(domain(), "ours"));
        EXPECT_EQ(preferenceValue(domain(), "theirs"), id("1"));
        ASSERT_EQ(chmod(folder().c_str(), 0755), 0);
    }
    EXPECT_THAT(log(), ElementsAre(HasSubstr("is lost")));
}

TEST_F(FilesInTheWay, FolderThatCannotBeMadeRefusesTheValue) {
    std::filesystem::remove_all(root() + "/var");
    write(root() + "/var", "a file");

    EXPECT_FALSE(set("key", "value"));

    EXPECT_FALSE(preferenceValue(domain(), "key"));
    EXPECT_THAT(log(), ElementsAre(HasSubstr("writing"), HasSubstr("reading")));
}

TEST_F(FilesInTheWay, ValueThatWasLostDoesNotComeBackWithALaterWrite) {
    std::filesystem::create_directory(file());
    set("first", "1");
    std::filesystem::remove(file());

    EXPECT_TRUE(set("second", "2"));

    EXPECT_FALSE(stored()->objectForKey("first"));
    EXPECT_EQ(stored()->objectForKey("second"), id("2"));
}

// A limit on file sizes fails a write half-way, as a full disk does, and needs no privileges.
TEST_F(FilesInTheWay, WriteThatRunsOutOfSpaceLeavesTheFileWhole) {
    set("theirs", "1");
    const std::string before = contents(file());
    const auto former = std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    const rlimit small{64, limit.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);

    const bool isStored = set("ours", std::string(1000, 'x'));

    setrlimit(RLIMIT_FSIZE, &limit);
    std::signal(SIGXFSZ, former);
    EXPECT_FALSE(isStored);
    EXPECT_EQ(contents(file()), before);
    EXPECT_THAT(namesLikeTheFile(), ElementsAre(domain() + ".plist"));
    EXPECT_FALSE(preferenceValue(domain(), "ours"));
    EXPECT_EQ(log().size(), 1u);
}

TEST_F(FilesInTheWay, FullDiskLeavesTheFileWhole) {
    if (mount("none", folder().c_str(), "tmpfs", 0, "size=64k") != 0)
        GTEST_SKIP() << "a small disk needs the right to mount one";
    set("theirs", "1");
    const std::string before = contents(file());
    write(folder() + "/filler", std::string(60'000, 'x'));

    EXPECT_FALSE(set("ours", std::string(20'000, 'y')));

    EXPECT_EQ(contents(file()), before);
    EXPECT_THAT(namesLikeTheFile(), ElementsAre(domain() + ".plist"));
    EXPECT_EQ(preferenceValue(domain(), "theirs"), id("1"));
    EXPECT_THAT(log(), ElementsAre(HasSubstr("No space left")));

    std::filesystem::remove(folder() + "/filler");
    EXPECT_TRUE(set("ours", std::string(20'000, 'y')));
    umount(folder().c_str());
}

} // namespace
