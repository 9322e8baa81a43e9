#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

#include "tests/machine/support/wait_until.h"

namespace machine {

// The machine's users.
constexpr uid_t kRoot = 0;
constexpr uid_t kAnna = 1000;
constexpr uid_t kBert = 1001;

// A program that runs beside the test, as one of the machine's users, in a process group of its own; what it says is
// kept. It is killed and reaped at the end of the scope. What cannot be started ends with 127.
class Program {
public:
    // Each of `environment` is NAME=value, beside PATH and what the user's HOME and XDG_RUNTIME_DIR are.
    explicit Program(const std::vector<std::string>& command, uid_t user = kRoot,
                     const std::vector<std::string>& environment = {});
    ~Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    pid_t pid() const { return m_pid; }
    void signal(int number) const;
    void write(const std::string& text) const; // to its standard input

    // How it ended: its status, or 128 and the signal's number; nothing when it did not end in time.
    std::optional<int> waitForEnd(std::chrono::milliseconds timeout = kLongTimeout);
    bool ended() { return waitForEnd(std::chrono::milliseconds(0)).has_value(); }

    // What it has said so far, on either output.
    const std::string& output();
    // Waits until it has said that; false when it did not in time.
    bool waitForOutput(const std::string& text, std::chrono::milliseconds timeout = kLongTimeout);

private:
    pid_t m_pid = -1;
    int m_input = -1;
    int m_output = -1;
    std::string m_said;
    std::optional<int> m_status;
};

struct Ended {
    int status = -1; // as Program::waitForEnd; -1 when it did not end in time and was killed
    std::string output;
};

// Runs a program to its end.
Ended run(const std::vector<std::string>& command, uid_t user = kRoot,
          std::chrono::milliseconds timeout = kLongTimeout);

} // namespace machine
