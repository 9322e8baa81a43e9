#pragma once

#include "platform/task.h"
#include "system/files/root.h"
#include "system/run_loop/PollLoop.h"
#include "tests/support/LoggedLines.h"
#include "tests/support/TemporaryFolder.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <sys/wait.h>

// The real path of the program that is launched.
extern const char* const launchedTool;

// A root with a tool in it that says what it was started with.
class ProcessTest : public ::testing::Test {
protected:
    ProcessTest() {
        seat::setRoot(m_folder.path());
        std::filesystem::create_directories(m_folder.file("usr/bin"));
        std::filesystem::create_symlink(launchedTool, m_folder.file("usr/bin/tool"));
    }
    ~ProcessTest() override {
        m_loop.runUntil(hasNoChild, 5);
        seat::setRoot("");
    }

    static std::shared_ptr<NSTask> launch(const std::vector<std::string>& arguments,
                                          const std::string& path = "/usr/bin/tool") {
        return NSTask::launchedTaskWithLaunchPath_arguments(path, arguments);
    }
    // None that runs, and none that waits to be reaped.
    static bool hasNoChild() {
        ::siginfo_t information{};
        return ::waitid(P_ALL, 0, &information, WEXITED | WNOHANG | WNOWAIT) == -1;
    }
    // Neither running nor waiting to be reaped.
    static bool isGone(int identifier) { return !std::filesystem::exists("/proc/" + std::to_string(identifier)); }
    bool goes(const NSTask& task) {
        return m_loop.runUntil([&] { return isGone(task.processIdentifier()); });
    }
    // The lines that a tool has written about itself; none when it has not.
    std::vector<std::string> report(const std::vector<std::string>& moreArguments = {}) {
        const std::string file = m_folder.file("report");
        std::vector<std::string> arguments{"report", file};
        arguments.insert(arguments.end(), moreArguments.begin(), moreArguments.end());
        const auto task = launch(arguments);
        if (task->processIdentifier() == 0 || !goes(*task)) return {};
        std::vector<std::string> lines;
        std::ifstream in(file);
        for (std::string line; std::getline(in, line);) lines.push_back(line);
        return lines;
    }
    // Those of the lines that begin so.
    static std::vector<std::string> beginning(const std::vector<std::string>& lines, const std::string& with) {
        std::vector<std::string> found;
        for (const auto& line : lines)
            if (line.starts_with(with)) found.push_back(line);
        return found;
    }

    testing_support::TemporaryFolder m_folder;
    testing_support::LoggedLines m_log;
    seat::PollLoop m_loop;
};
