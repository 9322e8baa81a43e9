#include "tests/simulator/DaemonTest.h"

#include <csignal>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

class DaemonPlace : public DaemonTest {
protected:
    std::vector<std::string> arguments() const { return {"--root", m_folder.path()}; }
    bool nothingLeft() const { return std::filesystem::is_empty(m_folder.file("Library/Caches")); }
};

TEST_F(DaemonPlace, ItsSocketIsItsUsersAloneAndGoesWithIt) {
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
        StandIn daemon(JVND_PROGRAM, arguments());
        ASSERT_TRUE(daemon.hears("ready"));
        struct ::stat status;
        ASSERT_EQ(0, ::stat(socketFile().c_str(), &status));
        EXPECT_TRUE(S_ISSOCK(status.st_mode));
        EXPECT_EQ(0u, status.st_mode & 0077);

        daemon.signal(number);

        EXPECT_EQ(0, daemon.end());
        EXPECT_TRUE(nothingLeft());
    }
}

TEST_F(DaemonPlace, ItEndsWithThePipeOfWhoStartedIt) {
    StandIn daemon(JVND_PROGRAM, arguments());
    ASSERT_TRUE(daemon.hears("ready"));

    daemon.closeInput();

    EXPECT_EQ(0, daemon.end());
    EXPECT_TRUE(nothingLeft());
}

TEST_F(DaemonPlace, ARootHasOneDaemon) {
    StandIn first(JVND_PROGRAM, arguments());
    ASSERT_TRUE(first.hears("ready"));
    StandIn second(JVND_PROGRAM, arguments());

    EXPECT_EQ(1, second.end());
    EXPECT_TRUE(second.hears("another daemon serves this root"));
    EXPECT_EQ(12u, query().size());

    const testing_support::TemporaryFolder other;
    StandIn elsewhere(JVND_PROGRAM, {"--root", other.path()});
    EXPECT_TRUE(elsewhere.hears("ready"));
}

TEST_F(DaemonPlace, TheSocketOfACrashedDaemonIsReplaced) {
    {
        StandIn crashed(JVND_PROGRAM, arguments());
        ASSERT_TRUE(crashed.hears("ready"));
        crashed.signal(SIGKILL);
        EXPECT_EQ(-SIGKILL, crashed.end());
    }
    EXPECT_TRUE(std::filesystem::exists(socketFile()));
    EXPECT_EQ(-1, connect());

    StandIn daemon(JVND_PROGRAM, arguments());
    ASSERT_TRUE(daemon.hears("ready"));
    EXPECT_EQ(12u, query().size());
}

TEST_F(DaemonPlace, WhatIsNoSocketIsLeftAlone) {
    std::filesystem::create_directories(m_folder.file("Library/Caches"));
    std::ofstream(socketFile()) << "precious";
    StandIn daemon(JVND_PROGRAM, arguments());

    EXPECT_EQ(1, daemon.end());

    EXPECT_TRUE(std::filesystem::is_regular_file(socketFile()));
}

TEST_F(DaemonPlace, TheRootMayBeLong) {
    std::string root = m_folder.path();
    for (int i = 0; i < 4; ++i) root += "/" + std::string(200, 'x');
    seat::setRoot(root);
    StandIn daemon(JVND_PROGRAM, {"--root", root});
    ASSERT_TRUE(daemon.hears("ready"));

    EXPECT_EQ(12u, query().size());
}

TEST_F(DaemonPlace, AScriptInTheRootIsItsMannerFromTheStart) {
    std::filesystem::create_directories(m_folder.file("var/tmp"));
    std::ofstream(m_folder.file("var/tmp/jvnd.script")) << "# comment\nstate 3\n";
    {
        StandIn daemon(JVND_PROGRAM, arguments());
        ASSERT_TRUE(daemon.hears("ready"));
        EXPECT_EQ(3u, simulator::word(query(), 4));
    }
    std::ofstream(m_folder.file("var/tmp/jvnd.script")) << "nonsense\n";
    StandIn daemon(JVND_PROGRAM, arguments());
    EXPECT_EQ(1, daemon.end());
    EXPECT_TRUE(daemon.hears("nonsense: not a word that the daemon knows"));
}

TEST_F(DaemonPlace, WithoutARootItSaysHowItIsUsed) {
    StandIn daemon(JVND_PROGRAM, {});

    EXPECT_EQ(2, daemon.end());
    EXPECT_TRUE(daemon.hears("Usage: jvnd --root DIR"));
}

} // namespace
