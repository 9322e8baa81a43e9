#pragma once

#include "system/files/Descriptor.h"

#include <chrono>
#include <string>

namespace seat {

// Exclusive right to change a file, held against other processes and other threads through a file beside it. Let go
// of when this object dies, also when its process is killed. The lock's file stays behind, empty.
class FileLock {
public:
    // Waits at most `timeout`.
    FileLock(int folder, const std::string& name, std::chrono::milliseconds timeout);

    bool isHeld() const { return m_held; }
    // Somebody else holds it; otherwise the lock's file could not be made.
    bool isBusy() const { return m_descriptor && !m_held; }
    // Why it is not held.
    const std::string& reason() const { return m_reason; }

private:
    Descriptor m_descriptor;
    bool m_held = false;
    std::string m_reason;
};

} // namespace seat
