// What makes a tool ours: its output, its process group, and that it does not outlive us.

#include "system/process/children.h"
#include "system/process/standard_descriptors.h"
#include "tests/support/SystemCalls.h"
#include "tests/system/process/ProcessTest.h"

#include <csignal>
#include <fcntl.h>
#include <functional>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

class OwnTools : public ProcessTest {
protected:
    // For facts that wake no loop.
    bool comesTrue(const std::function<bool()>& fact) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (!fact() && std::chrono::steady_clock::now() < end) m_loop.runUntil(fact, 0.005);
        return fact();
    }
    // Neither ended nor waiting for whoever adopts it.
    static bool runs(::pid_t process) {
        std::ifstream status("/proc/" + std::to_string(process) + "/stat");
        std::string number, name, state;
        return (status >> number >> name >> state) && state != "Z";
    }
    struct ProcessWithTool {
        ::pid_t process = 0; // starts the tool and does nothing else; to be killed and reaped
        ::pid_t tool = 0;    // 0: there is none
    };
    static ProcessWithTool startProcessWithTool(const std::vector<std::string>& arguments) {
        ProcessWithTool started;
        int ends[2];
        if (::pipe2(ends, O_CLOEXEC) != 0) return started;
        started.process = ::fork();
        if (started.process == 0) {
            const auto child = seat::spawn(seat::ChildKind::Tool, seat::hostPath("/usr/bin/tool"), arguments, {},
                                           std::chrono::milliseconds(10'000));
            [[maybe_unused]] const auto written = ::write(ends[1], &child.identifier, sizeof child.identifier);
            for (;;) ::pause();
        }
        ::pid_t tool = 0;
        if (::read(ends[0], &tool, sizeof tool) == sizeof tool && runs(tool)) started.tool = tool;
        ::close(ends[0]);
        ::close(ends[1]);
        return started;
    }
    static void kill(const ProcessWithTool& started) {
        ::kill(started.process, SIGKILL);
        ::waitpid(started.process, nullptr, 0);
    }
    // A tool of a process that is killed as soon as the tool has said that it is `ready`, a file; 0 if there is none.
    ::pid_t toolOfAKilledProcess(const std::vector<std::string>& arguments, const std::string& ready) {
        const ProcessWithTool started = startProcessWithTool(arguments);
        const bool isReady = numberIn(ready) != 0;
        kill(started);
        return isReady ? started.tool : 0;
    }
    // What a tool has written into the file by now; waits until there is one.
    int numberIn(const std::string& file) {
        int number = 0;
        comesTrue([&] { return std::filesystem::exists(file); });
        std::ifstream(file) >> number;
        return number;
    }
};

TEST_F(OwnTools, WhatAToolWritesIsLoggedUnderItsName) {
    EXPECT_TRUE(goes(*launch({"say", "2"})));
    m_loop.runUntil([&] { return m_log.count("tool: last") == 1; });

    EXPECT_EQ(1u, m_log.count("tool: line 0"));
    EXPECT_EQ(1u, m_log.count("tool: line 1"));
    EXPECT_EQ(1u, m_log.count("tool: last"));
}

TEST_F(OwnTools, TheLastLineIsLoggedThoughAChildOfTheToolsWritesOn) {
    EXPECT_TRUE(goes(*launch({"leave", m_folder.file("child")})));
    m_loop.runUntil([&] { return m_log.count("tool: unfinished") == 1; });

    EXPECT_EQ(1u, m_log.count("tool: unfinished"));
    ::kill(numberIn(m_folder.file("child")), SIGKILL);
}

TEST_F(OwnTools, AToolThatFloodsIsReadToItsEndAndLoggedInPart) {
    EXPECT_TRUE(goes(*launch({"say", "300000"})));
    m_loop.runReady();

    EXPECT_EQ(static_cast<std::size_t>(seat::mostLoggedLines), m_log.count("tool: line "));
    EXPECT_EQ(1u, m_log.count("tool: it says more than 100 lines"));
}

TEST_F(OwnTools, AnEndThatIsNoSuccessIsLogged) {
    EXPECT_TRUE(goes(*launch({"exit", "0"})));
    EXPECT_TRUE(goes(*launch({"exit", "3"})));
    const auto killed = launch({"wait"});
    platform::kill(killed->processIdentifier(), SIGKILL);
    EXPECT_TRUE(goes(*killed));
    m_loop.runUntil([&] { return m_log.count("was ended by signal 9") == 1; });

    EXPECT_EQ(1u, m_log.count("it ended with 3"));
    EXPECT_EQ(0u, m_log.count("it ended with 0"));
    EXPECT_EQ(1u, m_log.count("it was ended by signal 9"));
}

TEST_F(OwnTools, AnInterruptReachesTheToolsOwnChildren) {
    const auto task = launch({"family", m_folder.file("child")});
    const int child = numberIn(m_folder.file("child"));
    ASSERT_GT(child, 0);
    EXPECT_EQ(task->processIdentifier(), ::getpgid(child));
    EXPECT_NE(::getpgid(0), ::getpgid(child));

    platform::kill(task->processIdentifier(), SIGINT_NUMBER);

    EXPECT_TRUE(goes(*task));
    EXPECT_TRUE(comesTrue([child] { return !runs(child); }));
}

TEST_F(OwnTools, AToolIsInterruptedWhenItsProcessIsKilled) {
    const std::string interrupted = m_folder.file("interrupted");
    const ::pid_t tool = toolOfAKilledProcess({"tidy", m_folder.file("ready"), interrupted}, m_folder.file("ready"));
    ASSERT_GT(tool, 0);

    EXPECT_EQ(tool, numberIn(interrupted));
    EXPECT_TRUE(comesTrue([tool] { return !runs(tool); }));
}

TEST_F(OwnTools, ADeafToolDoesNotOutliveAProcessThatIsKilled) {
    const ::pid_t tool = toolOfAKilledProcess({"deaf", m_folder.file("deaf")}, m_folder.file("deaf"));
    ASSERT_GT(tool, 0);

    EXPECT_TRUE(comesTrue([tool] { return !runs(tool); }));
}

TEST_F(OwnTools, AToolDoesNotBeginBeforeItsGuardIsThere) {
    const std::string deaf = m_folder.file("deaf");
    ::prctl(PR_SET_CHILD_SUBREAPER, 1); // what is left behind becomes ours
    const ::pid_t parent = ::fork();
    if (parent == 0) {
        testing_support::SystemCalls calls;
        int forks = 0;
        calls.before(testing_support::SystemCall::Fork, [&](int) {
            if (++forks != 2) return; // the tool, then its guard
            for (int i = 0; i < 200 && !std::filesystem::exists(deaf); ++i) ::usleep(1000);
            ::kill(::getpid(), SIGKILL);
        });
        seat::spawn(seat::ChildKind::Tool, seat::hostPath("/usr/bin/tool"), {"deaf", deaf}, {},
                    std::chrono::milliseconds(10'000));
        ::_exit(0);
    }
    int status = 0;
    ::waitpid(parent, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status));

    EXPECT_TRUE(comesTrue([] { return ::waitpid(-1, nullptr, WNOHANG) < 0 && errno == ECHILD; }));
    EXPECT_FALSE(std::filesystem::exists(deaf));
    if (std::filesystem::exists(deaf)) ::kill(numberIn(deaf), SIGKILL);
    ::prctl(PR_SET_CHILD_SUBREAPER, 0);
}

TEST_F(OwnTools, AToolsOwnChildDoesNotOutliveAProcessThatIsKilled) {
    const ::pid_t tool = toolOfAKilledProcess({"family", m_folder.file("child")}, m_folder.file("child"));
    ASSERT_GT(tool, 0);
    const int child = numberIn(m_folder.file("child"));

    EXPECT_TRUE(comesTrue([&] { return !runs(tool) && !runs(child); }));
}

TEST_F(OwnTools, AToolsOwnChildDoesNotOutliveAProcessThatHadNotReapedTheTool) {
    const ProcessWithTool started = startProcessWithTool({"family", m_folder.file("child")});
    const int child = numberIn(m_folder.file("child"));
    ::kill(started.tool, SIGINT);
    EXPECT_TRUE(comesTrue([&] { return !runs(started.tool); }));
    EXPECT_TRUE(runs(child));

    kill(started);

    EXPECT_TRUE(comesTrue([&] { return !runs(child); }));
}

TEST_F(OwnTools, NothingOfAToolIsLeftOnceItHasEnded) {
    EXPECT_TRUE(goes(*launch({"exit", "0"})));
    const auto deaf = launch({"deaf", m_folder.file("deaf")});
    ASSERT_EQ(deaf->processIdentifier(), numberIn(m_folder.file("deaf")));
    platform::kill(deaf->processIdentifier(), SIGKILL);
    EXPECT_TRUE(goes(*deaf));

    EXPECT_TRUE(m_loop.runUntil(hasNoChild));
}

TEST_F(OwnTools, AtTheEndToolsAreInterruptedAndTheDeafOnesKilled) {
    const auto obedient = launch({"wait"});
    const auto deaf = launch({"deaf", m_folder.file("deaf")});
    ASSERT_EQ(deaf->processIdentifier(), numberIn(m_folder.file("deaf")));

    seat::endTools(std::chrono::milliseconds(200));

    EXPECT_TRUE(isGone(obedient->processIdentifier()));
    EXPECT_TRUE(isGone(deaf->processIdentifier()));
    EXPECT_EQ(1u, m_log.count("does not end when interrupted, and is killed"));
    EXPECT_EQ(1u, m_log.count("was ended by signal 2"));
    EXPECT_EQ(1u, m_log.count("was ended by signal 9"));
}

TEST_F(OwnTools, MissingStandardDescriptorsAreOpenedAndOthersLeftAlone) {
    const ::pid_t child = ::fork();
    if (child == 0) {
        ::close(STDIN_FILENO);
        ::close(STDERR_FILENO);
        seat::openMissingStandardDescriptors();
        const bool areOpen = ::fcntl(0, F_GETFD) != -1 && ::fcntl(1, F_GETFD) != -1 && ::fcntl(2, F_GETFD) != -1;
        const int next = ::open("/dev/null", O_RDONLY);
        const int before = next;
        ::close(next);
        seat::openMissingStandardDescriptors();
        const int after = ::open("/dev/null", O_RDONLY);
        ::_exit(areOpen && before > 2 && before == after ? 0 : 1);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(0, status);
}

} // namespace
