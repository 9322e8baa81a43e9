#pragma once

#include "services/input_protocol/messages.h"
#include "system/files/Descriptor.h"

#include "kit/dispatch/run_loop_sources.h"

#include <functional>
#include <optional>
#include <string>

namespace app {

// A connection to the input service that hears what the pad does, never a key, and counts as a game that listens while
// it is open: so the keyboard plays. Main thread; nothing waits.
class PadWatch {
public:
    // Hears each change; may destroy the object.
    explicit PadWatch(std::function<void()> changed);
    ~PadWatch();
    PadWatch(const PadWatch&) = delete;
    PadWatch& operator=(const PadWatch&) = delete;

    // Connects anew. Nothing is tried again by itself.
    void open(const std::string& socketPath);
    void close();

    // What came last; nothing until then, and after the end of the connection.
    const std::optional<input::State>& state() const { return m_state; }
    const std::optional<input::Keyboards>& keyboards() const { return m_keyboards; }
    // Why there is no connection, for people; empty while there is one.
    const std::string& problem() const { return m_problem; }

private:
    void readable();
    bool received(const void* data, std::size_t size);
    void end(const std::string& problem);

    std::function<void()> m_changed;
    seat::Descriptor m_socket;
    seat::SourceToken m_source = 0;
    std::optional<input::State> m_state;
    std::optional<input::Keyboards> m_keyboards;
    std::string m_problem;
};

} // namespace app
