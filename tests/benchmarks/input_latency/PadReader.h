#pragma once

#include <chrono>
#include <cstdint>
#include <string>

// Counts how often a button of a pad goes down and up. It reads as much as there is at a time: one that is slower than
// what it looks at would lose events itself.
class PadReader {
public:
    PadReader(const std::string& node, std::uint16_t button);
    ~PadReader();
    PadReader(PadReader&& other) noexcept;
    PadReader& operator=(PadReader&&) = delete;

    // Counts from now on; what has come before is over.
    void forget();

    // Until there are so many, or nothing has come for that long; says whether there are.
    bool waitForPresses(int count, std::chrono::milliseconds timeout);
    bool waitForReleases(int count, std::chrono::milliseconds timeout);

    int presses() const { return m_presses; }
    // Whether the kernel has thrown away what was not read in time.
    bool dropped() const { return m_dropped; }

private:
    // False when nothing comes in time.
    bool read(std::chrono::milliseconds timeout);

    int m_device = -1;
    std::uint16_t m_button;
    int m_presses = 0;
    int m_releases = 0;
    bool m_dropped = false;
};
