#include "services/bluetooth/Agent.h"

#include "services/bluetooth/service_names.h"
#include "services/common/log.h"

#include <cstring>
#include <string_view>
#include <utility>

namespace bluetooth {
namespace {

constexpr const char* rejected = "org.bluez.Error.Rejected";

// What a method of the agent would have the user do; nullptr for one that needs nobody.
const char* wish(std::string_view member) {
    if (member == "RequestPinCode" || member == "RequestPasskey") return "it asks for a PIN";
    if (member == "DisplayPinCode" || member == "DisplayPasskey") return "it wants a PIN to be typed on it";
    if (member == "RequestConfirmation") return "it wants a number to be compared";
    return nullptr;
}

} // namespace

Agent::Agent(services::Bus& bus, std::string device, std::string name)
    : m_device(std::move(device)), m_name(std::move(name)) {
    ::sd_bus_slot* slot = nullptr;
    if (bus.raw()) ::sd_bus_add_object(bus.raw(), &slot, path, called, this);
    m_slot.reset(slot);
}

int Agent::called(::sd_bus_message* message, void* self, ::sd_bus_error* error) {
    if (::sd_bus_message_is_method_call(message, agentInterface, nullptr) <= 0) return 0;
    return static_cast<Agent*>(self)->answer(message, error);
}

int Agent::answer(::sd_bus_message* message, ::sd_bus_error* error) {
    const std::string_view member = ::sd_bus_message_get_member(message);
    if (const char* const wanted = wish(member)) {
        // The service may ask again and again.
        if (!std::exchange(m_hasRefused, true))
            services::log("pairing with %s: refused, since %s", m_name.c_str(), wanted);
        return ::sd_bus_error_setf(error, rejected, "No PIN here");
    }
    const bool asksForLeave = member == "RequestAuthorization" || member == "AuthorizeService";
    if (asksForLeave) {
        const char* device = nullptr;
        if (::sd_bus_message_read(message, "o", &device) <= 0 || device != m_device) {
            services::log("pairing with %s: another device asks to be let in, and is not", m_name.c_str());
            return ::sd_bus_error_setf(error, rejected, "Not the device that is being paired");
        }
    } else if (member != "Cancel" && member != "Release") {
        return 0; // the library answers that there is no such method
    }
    return ::sd_bus_reply_method_return(message, "");
}

} // namespace bluetooth
