#pragma once

#include "services/common/EventLoop.h"
#include "services/jvnd/Caller.h"
#include "services/jvnd/FrameReader.h"
#include "system/files/Descriptor.h"

#include <cstdint>
#include <functional>
#include <vector>

namespace jvnd {

// One accepted connection, from its first byte to its end. A caller that does not read its replies is not read from
// either, so that no caller costs more memory than another.
class ControlConnection final : public Caller {
public:
    // So long without a whole frame, and without having one answered, and it is closed.
    static constexpr std::chrono::seconds longestSilence{5};

    // The descriptor does not block. `ended` is called once, when there is nothing more to be had from the caller, not
    // before start(); it may destroy this object. All references outlive this object.
    ControlConnection(services::EventLoop& loop, std::uint64_t number, seat::Descriptor descriptor,
                      CommandHandler& handler, std::function<void()> ended);
    ~ControlConnection();
    ControlConnection(const ControlConnection&) = delete;
    ControlConnection& operator=(const ControlConnection&) = delete;

    // Deals with what is there already, and from now on with what comes. May destroy this object.
    void start();

    void reply(const JVNControlFrame& frame) override;
    std::uint64_t number() const override { return m_number; }

private:
    void watch();
    // False when the connection has ended: this object may be no more.
    bool readSome();
    void writeSome();
    void checkSilence();
    void end();

    services::EventLoop& m_loop;
    std::uint64_t m_number;
    seat::Descriptor m_descriptor;
    CommandHandler& m_handler;
    std::function<void()> m_ended;
    services::EventLoop::Source m_ready;
    services::EventLoop::Source m_silence;
    services::Moment m_lastSign; // a whole frame, or an answer to one
    FrameReader m_reader;
    std::vector<std::uint8_t> m_unsent;
    bool m_isReading = false; // in readSome(): the watch is looked after there
};

} // namespace jvnd
