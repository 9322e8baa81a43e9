#include "system/bus/session_bus_address.h"

#include "system/bus/address_entries.h"
#include "system/files/environment.h"

#include <cstdlib>
#include <sys/stat.h>

namespace {

using seat::environment;

constexpr const char* addressVariable = "DBUS_SESSION_BUS_ADDRESS";

std::string& knownAddress() {
    static auto* const address = new std::string;
    return *address;
}

std::string addressInRuntimeFolder() {
    const std::string folder = environment("XDG_RUNTIME_DIR");
    struct stat information {};
    if (folder.empty() || stat((folder + "/bus").c_str(), &information) != 0 || !S_ISSOCK(information.st_mode))
        return {};
    return seat::addressOfSocketFile(folder + "/bus");
}

} // namespace

std::unique_ptr<seat::BusRelay> seat::settleSessionBus() {
    auto& address = knownAddress();
    address = environment(addressVariable);
    if (address.empty()) address = addressInRuntimeFolder();
    std::unique_ptr<BusRelay> relay;
    if (!address.empty()) relay = std::make_unique<BusRelay>(address);
    const bool isThere = relay && !relay->address().empty();
    setenv(addressVariable, isThere ? relay->address().c_str() : nobodysBusAddress, 1);
    if (relay) relay->start();
    return relay;
}

const std::string& seat::sessionBusAddress() { return knownAddress(); }
