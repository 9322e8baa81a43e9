#pragma once

// A child process that is spoken to in lines.

#include "kit/dispatch/run_loop_sources.h"
#include "system/files/Descriptor.h"

#include <functional>
#include <memory>
#include <string>
#include <sys/types.h>
#include <vector>

namespace app {

// Ends with this object: its standard input is closed, it gets a SIGTERM, and after a second a SIGKILL. Main thread.
class LineProcess {
public:
    // `heard` gets each line of its standard output on the main run loop. nullptr when it cannot be started.
    static std::unique_ptr<LineProcess> start(const std::string& program, const std::vector<std::string>& arguments,
                                              std::function<void(const std::string& line)> heard);
    ~LineProcess();
    LineProcess(const LineProcess&) = delete;
    LineProcess& operator=(const LineProcess&) = delete;

    // Without the run loop: blocks until the line is the last that it has said, but not longer than `seconds`. What it
    // says meanwhile is heard as usual.
    bool waitForLine(const std::string& line, double seconds);

private:
    LineProcess() = default;
    // False at the end of its output.
    bool readSome();

    ::pid_t m_child = 0;
    seat::Descriptor m_input;
    seat::Descriptor m_output;
    seat::SourceToken m_source = 0;
    std::string m_partial; // a line without its end yet
    std::string m_lastLine;
    std::function<void(const std::string&)> m_heard;
};

} // namespace app
