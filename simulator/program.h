#pragma once

#include "kit/dispatch/run_loop_sources.h"
#include "system/files/Descriptor.h"
#include "system/run_loop/PollLoop.h"

#include <functional>
#include <string>

namespace simulator {

// What both stand-ins are at bottom: a plain run loop that ends on a signal or with the program that started it.
class Program {
public:
    Program();
    ~Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    // SIGINT, SIGTERM and SIGHUP come here, with their number, instead of ending the process. By default they end
    // run().
    void setSignalled(std::function<void(int)> signalled) { m_signalled = std::move(signalled); }
    // Ends run() when the parent ends. A process whose parent has ended already ends at once.
    void endWithParent();
    // Each line of the standard input; when a pipe on it ends, so does run().
    void readLines(std::function<void(const std::string&)> line);

    // Until end(); gives the exit code.
    int run();
    void end(int code);
    // Lets the run loop go on until `done` holds.
    bool runUntil(const std::function<bool()>& done, double seconds) { return m_loop.runUntil(done, seconds); }

private:
    void signalArrived();
    void inputArrived();

    seat::PollLoop m_loop;
    seat::Descriptor m_signals;
    seat::Descriptor m_parent;
    seat::SourceToken m_signalSource = 0;
    seat::SourceToken m_parentSource = 0;
    seat::SourceToken m_inputSource = 0;
    std::function<void(int)> m_signalled;
    std::function<void(const std::string&)> m_line;
    std::string m_partialLine;
    bool m_ended = false;
    int m_code = 0;
};

} // namespace simulator
