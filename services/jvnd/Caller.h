#pragma once

#include "daemonlink/JVNControlFrame.h"

#include <cstdint>

namespace jvnd {

// One caller on the control socket, as whoever answers it sees it.
class Caller {
public:
    // Sends the 12 bytes of a reply. Never waits.
    virtual void reply(const JVNControlFrame& frame) = 0;
    // In the order in which they have come, from 1.
    virtual std::uint64_t number() const = 0;

protected:
    ~Caller() = default;
};

// Answers what callers ask.
class CommandHandler {
public:
    virtual ~CommandHandler() = default;

    enum class Then { GoOn, Close };
    // A whole frame has come. A reply may be sent at once or later; `caller` is good until callerGone(), which comes
    // after Close too.
    virtual Then handle(Caller& caller, const JVNControlFrame& frame) = 0;
    // It has closed, or has been closed; nothing is sent to it any more.
    virtual void callerGone(Caller& caller) = 0;
    // Whether it has asked for something that takes its time, and so may be silent.
    virtual bool isWaiting(const Caller& caller) const = 0;
};

} // namespace jvnd
