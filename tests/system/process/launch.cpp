#include "tests/support/SystemCalls.h"
#include "tests/support/descriptors.h"
#include "tests/system/process/ProcessTest.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

const char* const launchedTool = LAUNCHED_TOOL;

namespace {

using Clock = std::chrono::steady_clock;
using testing_support::SystemCall;
using testing_support::SystemCalls;

class Launch : public ProcessTest {
protected:
    static double millisecondsSince(Clock::time_point start) {
        return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
    }
    void expectFailure(const std::string& path, const std::string& reason) {
        const auto task = launch({}, path);
        ASSERT_TRUE(task);
        EXPECT_EQ(0, task->processIdentifier());
        EXPECT_EQ(1u, m_log.count("launch " + path + ": " + reason));
        EXPECT_EQ(-1, ::waitpid(-1, nullptr, WNOHANG)); // no child
    }
};

TEST_F(Launch, TheToolGetsItsPathAndItsArgumentsAndNothingElse) {
    const auto lines = report({"", "with space", "--option"});

    EXPECT_EQ((std::vector<std::string>{"argument " + m_folder.file("usr/bin/tool"), "argument report",
                                        "argument " + m_folder.file("report"), "argument ", "argument with space",
                                        "argument --option"}),
              beginning(lines, "argument "));
}

TEST_F(Launch, SignalsAreAtTheirDefaultsAndNoneIsBlocked) {
    const auto formerPipe = ::signal(SIGPIPE, SIG_IGN);
    const auto formerInterrupt = ::signal(SIGINT, SIG_IGN);
    const auto formerUser = ::signal(SIGUSR1, [](int) {});
    ::sigset_t blocked;
    ::sigset_t former;
    ::sigemptyset(&blocked);
    ::sigaddset(&blocked, SIGTERM);
    ::pthread_sigmask(SIG_BLOCK, &blocked, &former);

    const auto lines = report();

    ::sigset_t now;
    ::pthread_sigmask(SIG_SETMASK, &former, &now);
    EXPECT_EQ(1, ::sigismember(&now, SIGTERM)); // ours is as it was
    ASSERT_FALSE(lines.empty());
    EXPECT_TRUE(beginning(lines, "not default").empty()) << ::testing::PrintToString(lines);
    EXPECT_TRUE(beginning(lines, "blocked").empty()) << ::testing::PrintToString(lines);
    ::signal(SIGPIPE, formerPipe);
    ::signal(SIGINT, formerInterrupt);
    ::signal(SIGUSR1, formerUser);
}

TEST_F(Launch, OnlyTheStandardDescriptorsAreInherited) {
    const int plain = ::open("/dev/null", O_RDONLY); // not close-on-exec, as others' libraries leave them
    const int high = ::fcntl(plain, F_DUPFD, 700);

    const auto lines = report();

    EXPECT_EQ((std::vector<std::string>{"descriptors 0 1 2"}), beginning(lines, "descriptors"));
    ::close(plain);
    ::close(high);
}

TEST_F(Launch, TheToolStandsInTheTopmostFolder) {
    EXPECT_EQ((std::vector<std::string>{"folder /"}), beginning(report(), "folder "));
}

TEST_F(Launch, AToolThatIsMissingGivesIdentifierZeroAndALoggedReason) {
    expectFailure("/usr/bin/missing", "No such file or directory");
}

TEST_F(Launch, AToolThatMayNotRunGivesIdentifierZero) {
    std::ofstream(m_folder.file("usr/bin/plain")) << "text";
    expectFailure("/usr/bin/plain", "Permission denied");
}

TEST_F(Launch, AToolThatIsNoProgramGivesIdentifierZero) {
    std::ofstream(m_folder.file("usr/bin/nonsense")) << "no program";
    ::chmod(m_folder.file("usr/bin/nonsense").c_str(), 0755);
    expectFailure("/usr/bin/nonsense", "Exec format error");
}

TEST_F(Launch, AFolderInItsPlaceGivesIdentifierZero) { expectFailure("/usr/bin", "Permission denied"); }

TEST_F(Launch, WithoutRoomForAnotherProcessTheIdentifierIsZero) {
#if defined(__has_feature)
#if __has_feature(thread_sanitizer)
    GTEST_SKIP() << "the thread sanitizer forks by itself";
#endif
#endif
    SystemCalls calls;
    calls.fail(SystemCall::Fork, EAGAIN);
    expectFailure("/usr/bin/tool", "Resource temporarily unavailable");

    EXPECT_NE(0, launch({"exit", "0"})->processIdentifier());
}

TEST_F(Launch, WithoutADescriptorForAnyOfItsPipesTheIdentifierIsZeroAndNothingStaysOpen) {
    launch({}, "/usr/bin/missing");
    const auto before = testing_support::openDescriptors();
    SystemCalls calls;
    int pipes = 0;
    for (;;) {
        calls.failAt(SystemCall::Pipe, pipes + 1, EMFILE);
        if (launch({"exit", "0"})->processIdentifier() != 0) break;
        ++pipes;
        EXPECT_EQ(before, testing_support::openDescriptors()) << "at pipe " << pipes;
        ASSERT_LT(pipes, 10);
    }
    EXPECT_EQ(pipes, calls.count(SystemCall::Pipe)) << "it fails without any one of them";
    EXPECT_EQ(m_log.count("Too many open files"), static_cast<std::size_t>(pipes));
}

TEST_F(Launch, FailuresLeaveNoDescriptor) {
    // On a busy machine one is still being loaded when it is given back.
    launch({}, "/usr/bin/missing");
    EXPECT_TRUE(m_loop.runUntil(hasNoChild));
    const auto before = testing_support::openDescriptors();
    for (int i = 0; i < 20; ++i) launch({}, "/usr/bin/missing");
    EXPECT_TRUE(m_loop.runUntil(hasNoChild));
    EXPECT_EQ(before, testing_support::openDescriptors());
}

TEST_F(Launch, AnInterruptRightAfterTheLaunchEndsTheTool) {
    for (int i = 0; i < 20; ++i) {
        const auto task = launch({"wait"});
        ASSERT_NE(0, task->processIdentifier());
        EXPECT_EQ(0, platform::kill(task->processIdentifier(), SIGINT_NUMBER));
        EXPECT_TRUE(goes(*task));
    }
}

// A lease makes whoever opens the file wait, as a disk that has to wake up does.
class Lease {
public:
    explicit Lease(const std::string& file) : m_former(::signal(SIGIO, SIG_IGN)) {
        m_descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
        m_held = ::fcntl(m_descriptor, F_SETLEASE, F_WRLCK) == 0;
    }
    ~Lease() {
        ::close(m_descriptor);
        ::signal(SIGIO, m_former);
    }
    Lease(const Lease&) = delete;
    Lease& operator=(const Lease&) = delete;

    bool isHeld() const { return m_held; }

private:
    ::sighandler_t m_former;
    int m_descriptor = -1;
    bool m_held = false;
};

class SlowLaunch : public Launch {
protected:
    // A tool of its own, so that nobody else has it open.
    void copyTool(const std::string& from) {
        std::filesystem::copy_file(from, m_folder.file("usr/bin/slow"));
        ::chmod(m_folder.file("usr/bin/slow").c_str(), 0755);
    }
};

TEST_F(SlowLaunch, AToolThatTakesLongToLoadDoesNotHoldUpWhoStartsIt) {
    copyTool(LAUNCHED_TOOL);
    const std::string file = m_folder.file("report");
    std::shared_ptr<NSTask> task;
    {
        const Lease lease(m_folder.file("usr/bin/slow"));
        if (!lease.isHeld()) GTEST_SKIP() << "this file system has no leases";

        const auto start = Clock::now();
        task = launch({"report", file}, "/usr/bin/slow");

        EXPECT_LT(millisecondsSince(start), 100);
        EXPECT_NE(0, task->processIdentifier());
        m_loop.runUntil([] { return false; }, 0.1);
        EXPECT_FALSE(std::filesystem::exists(file));
    }
    EXPECT_TRUE(goes(*task));
    EXPECT_TRUE(std::filesystem::exists(file));
    EXPECT_NE(0, task->processIdentifier());
}

TEST_F(SlowLaunch, AToolThatTurnsOutToBeNoProgramIsLoggedAndForgotten) {
    std::ofstream(m_folder.file("nonsense")) << "no program";
    copyTool(m_folder.file("nonsense"));
    std::shared_ptr<NSTask> task;
    {
        const Lease lease(m_folder.file("usr/bin/slow"));
        if (!lease.isHeld()) GTEST_SKIP() << "this file system has no leases";
        task = launch({}, "/usr/bin/slow");
        EXPECT_NE(0, task->processIdentifier());
    }
    EXPECT_TRUE(m_loop.runUntil([&] { return task->processIdentifier() == 0; }));
    EXPECT_EQ(1u, m_log.count("launch /usr/bin/slow: Exec format error"));
}

} // namespace
