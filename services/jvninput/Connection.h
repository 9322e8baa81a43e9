#pragma once

#include "services/input_protocol/messages.h"
#include "system/files/Descriptor.h"

#include <optional>
#include <string>

namespace jvninput {

// The connection to jvninputd. It waits; this program has nothing else to do.
class Connection {
public:
    // False, and why in `complaint`, when nobody is there.
    bool open(const std::string& path, input::Role role, std::string& complaint);
    void send(const input::Settings& settings) const;

    // Takes the next message; false at the end of the connection, and why in `complaint`.
    bool receive(std::string& complaint);

    // What came last, once both have come.
    bool complete() const { return m_state && m_keyboards; }
    const input::State& state() const { return *m_state; }
    const input::Keyboards& keyboards() const { return *m_keyboards; }

private:
    seat::Descriptor m_socket;
    std::optional<input::State> m_state;
    std::optional<input::Keyboards> m_keyboards;
};

} // namespace jvninput
