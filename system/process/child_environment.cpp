#include "system/process/child_environment.h"

#include "system/bus/session_bus_address.h"
#include "system/files/root.h"

#include <cstdlib>
#include <map>
#include <unistd.h>

namespace {

// What the variables that are ours alone were before; empty: not there.
std::map<std::string, std::string>& formerValues() {
    static auto* const values = new std::map<std::string, std::string>;
    return *values;
}

// An empty value takes the variable away.
void set(std::vector<std::string>& environment, const std::string& name, const std::string& value) {
    std::erase_if(environment, [&name](const std::string& entry) { return entry.starts_with(name + "="); });
    if (!value.empty()) environment.push_back(name + "=" + value);
}

} // namespace

void seat::setVariableForUsAlone(const std::string& name, const std::string& value) {
    const char* const former = std::getenv(name.c_str());
    formerValues().try_emplace(name, former ? former : "");
    setenv(name.c_str(), value.c_str(), 1);
}

std::vector<std::string> seat::childEnvironment() {
    std::vector<std::string> environment;
    for (char** entry = environ; entry && *entry; ++entry) environment.emplace_back(*entry);
    for (const auto& [name, former] : formerValues()) set(environment, name, former);
    set(environment, rootVariable, root());
    // Our own environment may have been given an address that leads nowhere, to keep libraries from waiting.
    if (!sessionBusAddress().empty()) set(environment, "DBUS_SESSION_BUS_ADDRESS", sessionBusAddress());
    return environment;
}
