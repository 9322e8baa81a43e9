#pragma once

#include "services/input_protocol/messages.h"
#include "system/files/Descriptor.h"

#include <chrono>
#include <optional>
#include <string>

namespace jvninput {

// The connection to jvninputd. It waits; this program has nothing else to do.
class Connection {
public:
    // How long it waits until it has been told everything once. The service manager may have to start jvninputd first.
    static constexpr std::chrono::milliseconds answerTimeout = std::chrono::seconds(30);

    // False, and why in `complaint`, when nobody is there.
    bool open(const std::string& path, input::Role role, std::string& complaint,
              std::chrono::milliseconds timeout = answerTimeout);
    void send(const input::Settings& settings) const;

    // Takes the next message; false at the end of the connection, and why in `complaint`.
    bool receive(std::string& complaint);

    // What came last, once both have come.
    bool complete() const { return m_state && m_keyboards; }
    const input::State& state() const { return *m_state; }
    const input::Keyboards& keyboards() const { return *m_keyboards; }

private:
    void setTimeout(std::chrono::milliseconds timeout) const; // 0 for none

    seat::Descriptor m_socket;
    std::optional<input::State> m_state;
    std::optional<input::Keyboards> m_keyboards;
};

} // namespace jvninput
