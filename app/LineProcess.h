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

// Ends with this object: its standard input is closed, it gets a SIGTERM, and after a second a SIGKILL. One that ends
// before is reaped at once. Main thread.
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
    // Hears on the main run loop, once, that it has ended by itself, and how ("ended with 1"): after its last line,
    // when it has been reaped. The object may be destroyed meanwhile.
    void setEndListener(std::function<void(const std::string& how)> ended) { m_ended = std::move(ended); }
    ::pid_t identifier() const { return m_child; } // 0 once it has been reaped

private:
    LineProcess() = default;
    // False at the end of its output.
    bool readSome();
    void reapEnded();

    ::pid_t m_child = 0;
    seat::Descriptor m_process;
    seat::Descriptor m_input;
    seat::Descriptor m_output;
    seat::SourceToken m_source = 0;
    seat::SourceToken m_endSource = 0;
    std::string m_partial; // a line without its end yet
    std::string m_lastLine;
    std::function<void(const std::string&)> m_heard;
    std::function<void(const std::string&)> m_ended;
};

} // namespace app
