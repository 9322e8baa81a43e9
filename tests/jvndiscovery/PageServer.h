#pragma once

#include "services/common/Bus.h"
#include "services/common/EventLoop.h"

#include <cstdlib>
#include <stdexcept>
#include <string>
#include <string_view>

namespace testing_support {

// The page's message server.
class PageServer {
public:
    explicit PageServer(services::EventLoop& loop) {
        const bool works = ::sd_bus_new(&m_bus) >= 0 &&
                           ::sd_bus_set_address(m_bus, std::getenv("DBUS_SESSION_BUS_ADDRESS")) >= 0 &&
                           ::sd_bus_set_bus_client(m_bus, 1) >= 0 && ::sd_bus_start(m_bus) >= 0 &&
                           ::sd_bus_attach_event(m_bus, loop.raw(), 0) >= 0 &&
                           ::sd_bus_add_object(m_bus, nullptr, "/", called, this) >= 0 &&
                           ::sd_bus_request_name(m_bus, "com.quorrel.jvn.bootstrap", 0) >= 0;
        if (!works) throw std::runtime_error("no page server");
    }
    ~PageServer() { ::sd_bus_close_unref(m_bus); }
    PageServer(const PageServer&) = delete;
    PageServer& operator=(const PageServer&) = delete;

    std::string states; // one digit each, in the order in which they came

private:
    static int called(::sd_bus_message* message, void* self, ::sd_bus_error*) {
        if (::sd_bus_message_is_method_call(message, "com.quorrel.jvn.bootstrap", "JVNDiscoveryUpdate") <= 0) return 0;
        services::readDictionary(message, "v", [&](std::string_view key) {
            int state = 0;
            if (key != "JVNDiscoveryState" || !services::readVariant(message, "i", state)) return false;
            static_cast<PageServer*>(self)->states += static_cast<char>('0' + state);
            return true;
        });
        return ::sd_bus_reply_method_return(message, "");
    }

    ::sd_bus* m_bus = nullptr;
};

} // namespace testing_support
