#pragma once

#include "services/common/EventLoop.h"
#include "services/common/Message.h"

#include <stdexcept>
#include <string_view>

namespace machine {

// Who is at the controller's end of a pairing: the Bluetooth service asks it what the controller's own keys would say.
// The service must run, and forgets it when it ends.
class ControllersAgent {
public:
    enum class Answer { Pin, Nothing };
    ControllersAgent(services::EventLoop& loop, Answer answer) : m_answer(answer) {
        const auto manage = [this](const char* member, const char* types, auto... arguments) {
            return ::sd_bus_call_method(m_bus, "org.bluez", "/org/bluez", "org.bluez.AgentManager1", member, nullptr,
                                        nullptr, types, arguments...) >= 0;
        };
        const bool works =
            ::sd_bus_open_system(&m_bus) >= 0 && ::sd_bus_add_object(m_bus, nullptr, kPath, called, this) >= 0 &&
            manage("RegisterAgent", "os", kPath, "KeyboardDisplay") && manage("RequestDefaultAgent", "o", kPath) &&
            ::sd_bus_attach_event(m_bus, loop.raw(), SD_EVENT_PRIORITY_NORMAL) >= 0;
        if (!works) throw std::runtime_error("the controller's agent is not taken");
    }
    ~ControllersAgent() {
        m_unanswered.reset();
        ::sd_bus_flush_close_unref(m_bus);
    }
    ControllersAgent(const ControllersAgent&) = delete;
    ControllersAgent& operator=(const ControllersAgent&) = delete;

    bool isAsked = false; // for a PIN, or whether it shall be paired at all

private:
    static constexpr const char* kPath = "/controller";

    static int called(::sd_bus_message* message, void* data, ::sd_bus_error*) {
        auto& self = *static_cast<ControllersAgent*>(data);
        const std::string_view member = ::sd_bus_message_get_member(message);
        self.isAsked = self.isAsked || member.starts_with("Request");
        if (self.m_answer == Answer::Nothing) {
            self.m_unanswered.reset(::sd_bus_message_ref(message));
            return 1;
        }
        if (member == "RequestPinCode") return ::sd_bus_reply_method_return(message, "s", "271828");
        return ::sd_bus_reply_method_return(message, "");
    }

    Answer m_answer;
    ::sd_bus* m_bus = nullptr;
    services::Message m_unanswered;
};

} // namespace machine
