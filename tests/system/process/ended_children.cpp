#include "system/process/children.h"
#include "tests/support/descriptors.h"
#include "tests/system/process/ProcessTest.h"

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

namespace {

class EndedChildren : public ProcessTest {};

TEST_F(EndedChildren, AToolThatEndsIsReapedAndKeepsItsIdentifier) {
    const auto task = launch({"exit", "3"});
    const int identifier = task->processIdentifier();
    ASSERT_NE(0, identifier);

    EXPECT_TRUE(goes(*task));

    EXPECT_EQ(identifier, task->processIdentifier());
}

TEST_F(EndedChildren, AListenerHearsOfTheStartAndOfHowItEnded) {
    std::vector<std::string> heard;
    seat::setChildListener([&](const std::string& sentence) { heard.push_back(sentence); });

    const auto first = launch({"exit", "3"});
    goes(*first);
    const auto second = launch({"wait"});
    platform::kill(second->processIdentifier(), SIGKILL);
    goes(*second);
    m_loop.runUntil([&] { return heard.size() == 4; });
    seat::setChildListener(nullptr);
    goes(*launch({"exit", "0"}));

    const auto named = [](const NSTask& task) { return "process " + std::to_string(task.processIdentifier()); };
    const std::string tool = seat::hostPath("/usr/bin/tool");
    EXPECT_EQ(heard, (std::vector<std::string>{named(*first) + " was started: " + tool + " exit 3",
                                               named(*first) + " ended with 3",
                                               named(*second) + " was started: " + tool + " wait",
                                               named(*second) + " was ended by signal 9"}));
}

TEST_F(EndedChildren, ASignalReachesARunningToolAndNotAnEndedOne) {
    const auto task = launch({"wait"});
    EXPECT_EQ(0, platform::kill(task->processIdentifier(), 0));

    EXPECT_EQ(0, platform::kill(task->processIdentifier(), SIGINT_NUMBER));
    ASSERT_TRUE(goes(*task));

    EXPECT_EQ(-1, platform::kill(task->processIdentifier(), SIGINT_NUMBER));
}

TEST_F(EndedChildren, NobodyElseGetsASignal) {
    const ::pid_t other = ::fork();
    if (other == 0)
        for (;;) ::pause();

    EXPECT_EQ(-1, platform::kill(other, SIGINT_NUMBER));
    EXPECT_EQ(-1, platform::kill(0, SIGINT_NUMBER));
    EXPECT_EQ(-1, platform::kill(-1, SIGINT_NUMBER));
    EXPECT_EQ(-1, platform::kill(::getpid(), SIGINT_NUMBER));

    EXPECT_EQ(0, ::waitpid(other, nullptr, WNOHANG)); // it lives
    ::kill(other, SIGKILL);
    ::waitpid(other, nullptr, 0);
}

TEST_F(EndedChildren, TheToolOutlivesItsTask) {
    auto task = launch({"wait"});
    const int identifier = task->processIdentifier();
    task.reset();
    m_loop.runReady();

    EXPECT_FALSE(isGone(identifier));

    platform::kill(identifier, SIGKILL);
    EXPECT_TRUE(m_loop.runUntil([&] { return isGone(identifier); }));
}

TEST_F(EndedChildren, AToolThatIsStoppedIsStillOurs) {
    const auto task = launch({"wait"});
    platform::kill(task->processIdentifier(), SIGSTOP);
    m_loop.runUntil([] { return false; }, 0.05);

    EXPECT_EQ(0, platform::kill(task->processIdentifier(), 0));

    platform::kill(task->processIdentifier(), SIGKILL);
    EXPECT_TRUE(goes(*task));
}

TEST_F(EndedChildren, AHundredLaunchesLeaveNoDescriptorNoThreadAndNoZombie) {
    launch({"exit", "0"});
    ASSERT_TRUE(m_loop.runUntil(hasNoChild));
    const auto descriptors = testing_support::openDescriptors();
    const auto threads = testing_support::runningThreads();

    std::vector<std::shared_ptr<NSTask>> tasks;
    for (int i = 0; i < 100; ++i) {
        tasks.push_back(launch({i % 2 ? "wait" : "exit", "0"}));
        ASSERT_NE(0, tasks.back()->processIdentifier());
        platform::kill(tasks.back()->processIdentifier(), SIGINT_NUMBER);
    }
    for (const auto& task : tasks) EXPECT_TRUE(goes(*task));
    EXPECT_TRUE(m_loop.runUntil(hasNoChild));

    EXPECT_EQ(descriptors, testing_support::openDescriptors());
    EXPECT_EQ(threads, testing_support::runningThreads());
}

} // namespace
