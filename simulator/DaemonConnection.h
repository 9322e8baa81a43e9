#pragma once

#include "kit/dispatch/run_loop_sources.h"
#include "simulator/daemon_manner.h"
#include "system/files/Descriptor.h"

#include <functional>

namespace simulator {

// One caller, from its connecting to its end, treated in the manner of that moment.
class DaemonConnection {
public:
    // `answer` takes a whole frame and gives the reply; empty: none is owed. `ended` must
    // leave this object alone until the call has returned.
    DaemonConnection(int number, seat::Descriptor descriptor, DaemonManner manner,
                     std::function<Bytes(std::span<const std::uint8_t>)> answer, std::function<void()> ended);
    ~DaemonConnection();
    DaemonConnection(const DaemonConnection&) = delete;
    DaemonConnection& operator=(const DaemonConnection&) = delete;

private:
    void readable();
    bool takeFrame();
    Bytes inOurManner(Bytes reply, Command asked) const;
    void sendLater(double seconds, std::size_t at);
    void sendFrom(std::size_t at);
    void hangUp(const char* why);

    int m_number;
    seat::Descriptor m_descriptor;
    DaemonManner m_manner;
    std::function<Bytes(std::span<const std::uint8_t>)> m_answer;
    std::function<void()> m_ended;
    seat::SourceToken m_source = 0;
    seat::SourceToken m_timer = 0;
    Bytes m_received;
    Bytes m_reply; // what is on its way
    Command m_asked = Command::QueryConnection;
};

} // namespace simulator
