#include "host/process/child_environment.h"

#include "host/bus/session_bus_address.h"
#include "host/foundation/root.h"

#include <unistd.h>

namespace {

// An empty value takes the variable away.
void set(std::vector<std::string>& environment, const std::string& name, const std::string& value) {
    std::erase_if(environment, [&name](const std::string& entry) { return entry.starts_with(name + "="); });
    if (!value.empty()) environment.push_back(name + "=" + value);
}

} // namespace

std::vector<std::string> host::childEnvironment() {
    std::vector<std::string> environment;
    for (char** entry = environ; entry && *entry; ++entry) environment.emplace_back(*entry);
    set(environment, rootVariable, root());
    // Our own environment may have been given an address that leads nowhere, to keep libraries from waiting.
    if (!sessionBusAddress().empty()) set(environment, "DBUS_SESSION_BUS_ADDRESS", sessionBusAddress());
    return environment;
}
