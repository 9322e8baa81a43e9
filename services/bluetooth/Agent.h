#pragma once

#include "services/common/Bus.h"

#include <string>

namespace bluetooth {

// Answers for a user who is not asked: this program can neither show nor ask for a PIN, so whatever wants one is
// refused, with a line in the log that says so. The one device that is being paired may do the rest by itself.
//
// While it lives it stands at the bus; asking the service to take it, and to let go of it, is the owner's.
class Agent {
public:
    static constexpr const char* path = "/com/quorrel/joyvane/agent";

    // `device` is the device's path, `name` what a log may call it.
    Agent(services::Bus& bus, std::string device, std::string name);
    Agent(const Agent&) = delete;
    Agent& operator=(const Agent&) = delete;

    // Something was refused, and said to be.
    bool hasRefused() const { return m_hasRefused; }

private:
    int answer(::sd_bus_message* message, ::sd_bus_error* error);
    static int called(::sd_bus_message* message, void* self, ::sd_bus_error* error);

    std::string m_device;
    std::string m_name;
    bool m_hasRefused = false;
    services::Slot m_slot;
};

} // namespace bluetooth
