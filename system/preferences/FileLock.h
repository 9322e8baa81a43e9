#pragma once

#include "system/files/Descriptor.h"

#include <chrono>
#include <optional>
#include <string>

namespace seat {

// Exclusive right to change a file, held against other processes and other threads through a file beside it. Let go
// of when this object dies, also when its process is killed. The lock's file stays behind, empty; when somebody removes
// it, whoever holds the lock of the file that has its name counts.
class FileLock {
public:
    // The folder is open for as long as this lives. Waits at most `timeout`; without one for as long as it takes.
    FileLock(int folder, const std::string& name, std::optional<std::chrono::milliseconds> timeout);

    bool isHeld() const { return m_state == State::Held; }
    // Somebody else holds it; otherwise the lock's file could not be opened.
    bool isBusy() const { return m_state == State::Busy; }
    // Why it is not held.
    const std::string& reason() const { return m_reason; }
    // The locked file still has the lock's name.
    bool isCurrent() const;

private:
    enum class State { Failed, Busy, Held };
    using Deadline = std::optional<std::chrono::steady_clock::time_point>;
    bool open();
    bool lockBefore(Deadline deadline);
    void fail(const char* operation, int number);

    int m_folder;
    std::string m_name;
    Descriptor m_descriptor;
    State m_state = State::Failed;
    std::string m_reason;
};

} // namespace seat
