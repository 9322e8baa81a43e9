#include "kit/dispatch/shutdown.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <sys/wait.h>

namespace {

struct Ending {
    int status;
    std::string output;
    double seconds;
};

Ending run(const std::string& mode) {
    const auto start = std::chrono::steady_clock::now();
    const std::string command = std::string(std::getenv("DISPATCH_QUITTER")) + " " + mode;
    FILE* const pipe = ::popen(command.c_str(), "r");
    Ending ending{};
    for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe)) ending.output += static_cast<char>(c);
    ending.status = ::pclose(pipe);
    ending.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    return ending;
}

TEST(Shutdown, ProcessEndsWhileAWorkerSitsInAReceiveOfTwentySeconds) {
    const Ending ending = run("waiting");

    EXPECT_EQ(WEXITSTATUS(ending.status), 7);
    EXPECT_EQ(ending.output, "main ends\n");
    // The aim is half a second; a machine with better things to do may need more to start the process.
    EXPECT_LT(ending.seconds, 5);
}

TEST(Shutdown, ProcessThatForgetsToShutDownEndsAsWell) {
    const Ending ending = run("waiting-at-exit");

    EXPECT_EQ(WEXITSTATUS(ending.status), 7);
    EXPECT_EQ(ending.output, "main ends\n");
    EXPECT_LT(ending.seconds, 5);
}

TEST(Shutdown, ProcessWithoutWaitingWorkersEndsInTheOrdinaryWay) {
    const Ending ending = run("idle");

    EXPECT_EQ(WEXITSTATUS(ending.status), 7);
    EXPECT_EQ(ending.output, "main ends\nstatics destroyed\n");
}

} // namespace
