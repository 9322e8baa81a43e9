#pragma once

#include "kit/dispatch/run_loop_sources.h"
#include "system/files/Descriptor.h"

#include <string>

namespace seat {

// What a tool writes, read on the main run loop and logged line by line under its name: bounded in length and number,
// so that a tool that floods fills no disk, but always read, so that it never waits for us. Main thread.
class ChildOutput {
public:
    // `output` does not block.
    ChildOutput(Descriptor output, std::string name);
    ~ChildOutput();
    ChildOutput(const ChildOutput&) = delete;
    ChildOutput& operator=(const ChildOutput&) = delete;

    // The tool has ended: logs what it has written until then, its last line included.
    void finish();

private:
    void readWhatIsThere();
    void take(std::string_view text);
    void logLine();
    void stop();

    Descriptor m_output;
    std::string m_name;
    std::string m_line; // so far
    int m_lines = 0;
    SourceToken m_source = 0;
};

} // namespace seat
