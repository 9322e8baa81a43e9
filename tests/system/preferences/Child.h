#pragma once

#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <stdexcept>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

// A child process whose output can be read. Killed and reaped at the end of the scope.
class Child {
public:
    explicit Child(const std::vector<std::string>& commandLine) {
        int ends[2];
        if (pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("pipe");
        m_output = ends[0];
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
        std::vector<char*> arguments;
        for (const auto& argument : commandLine) arguments.push_back(const_cast<char*>(argument.c_str()));
        arguments.push_back(nullptr);
        const int result = posix_spawn(&m_process, arguments[0], &actions, nullptr, arguments.data(), environ);
        posix_spawn_file_actions_destroy(&actions);
        close(ends[1]);
        if (result != 0) throw std::runtime_error("starting " + commandLine[0]);
    }
    ~Child() {
        if (m_process > 0) {
            kill(m_process, SIGKILL);
            wait();
        }
        close(m_output);
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    void signal(int number) const { kill(m_process, number); }
    // The status as waitpid gives it.
    int wait() {
        int status = 0;
        while (waitpid(m_process, &status, 0) < 0 && errno == EINTR) {
        }
        m_process = 0;
        return status;
    }
    // Waits until the child has stopped.
    void waitUntilStopped() const {
        int status = 0;
        while (waitpid(m_process, &status, WUNTRACED) < 0 && errno == EINTR) {
        }
    }
    // One line, or what came before the end or before ten seconds had gone.
    std::string line() const {
        std::string text;
        pollfd ready{m_output, POLLIN, 0};
        for (char letter = 0; poll(&ready, 1, 10'000) > 0 && read(m_output, &letter, 1) == 1 && letter != '\n';)
            text += letter;
        return text;
    }

private:
    pid_t m_process = 0;
    int m_output = -1;
};
