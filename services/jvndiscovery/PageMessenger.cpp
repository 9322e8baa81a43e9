#include "services/jvndiscovery/PageMessenger.h"

#include "services/common/log.h"

namespace jvndiscovery {
namespace {

// The page's message server, the message, and the key of the number in its dictionary.
constexpr const char* serverName = "com.quorrel.jvn.bootstrap";
constexpr const char* messageName = "JVNDiscoveryUpdate";
constexpr const char* stateKey = "JVNDiscoveryState";

} // namespace

PageMessenger::PageMessenger(services::EventLoop& loop) : m_bus(loop, services::Bus::Which::Session, {}) {}

void PageMessenger::report(State state) {
    auto message = m_bus.method(serverName, "/", serverName, messageName);
    if (message) {
        ::sd_bus_message_set_auto_start(message.get(), 0);
        ::sd_bus_message_append(message.get(), "a{sv}", 1, stateKey, "i", static_cast<int>(state));
    }
    m_calls.push_back(m_bus.call(std::move(message), [](const services::Bus::Reply& reply) {
        if (!reply.error.empty()) services::log("telling the page: %s", reply.error.c_str());
    }));
}

} // namespace jvndiscovery
