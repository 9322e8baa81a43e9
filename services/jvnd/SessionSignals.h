#pragma once

#include "services/common/Bus.h"

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace jvnd {

// Hears notifications that are posted on the user's session bus. Only senders of this process's user, and root, are
// listened to.
class SessionSignals {
public:
    // "com.quorrel.jvnprefs.changed" is the signal "changed" of the interface "com.quorrel.jvnprefs". The loop outlives
    // this object.
    SessionSignals(services::EventLoop& loop, std::vector<std::string> names,
                   std::function<void(const std::string& name)> heard);

private:
    static int received(::sd_bus_message* message, void* self, ::sd_bus_error*);
    void listen();
    void ask(const std::string& name, const char* sender);
    void answered(std::uint64_t question, const std::string& name, const services::Bus::Reply& reply);

    std::vector<std::string> m_names;
    std::function<void(const std::string& name)> m_heard;
    services::Bus m_bus;
    std::vector<services::Slot> m_matches;
    std::map<std::uint64_t, services::EventLoop::Source> m_questions; // who the senders are
    std::uint64_t m_lastQuestion = 0;
};

} // namespace jvnd
