#include "system/process/child_environment.h"

#include "system/bus/session_bus_address.h"
#include "system/files/root.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <map>
#include <string_view>
#include <unistd.h>

namespace {

// What the variables that are ours alone were before; empty: not there.
std::map<std::string, std::string>& formerValues() {
    static auto* const values = new std::map<std::string, std::string>;
    return *values;
}

// The sanitizers' own are for instrumented builds alone: elsewhere they could change what a tool does.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define JOYVANE_IS_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer) || __has_feature(memory_sanitizer)
#define JOYVANE_IS_SANITIZED 1
#endif
#endif

constexpr std::string_view toolVariables[] = {
    "HOME",
    "USER",
    "LOGNAME",
    "LANG",
    "LANGUAGE",
    "TZ",
    "XDG_RUNTIME_DIR",
    "XDG_DATA_HOME",
    "DBUS_SESSION_BUS_ADDRESS",
    "DBUS_SYSTEM_BUS_ADDRESS",
    seat::rootVariable,
    "JOYVANE_SIMULATE",
#ifdef JOYVANE_IS_SANITIZED
    "ASAN_OPTIONS",
    "LSAN_OPTIONS",
    "UBSAN_OPTIONS",
    "TSAN_OPTIONS",
    "MSAN_OPTIONS",
#endif
};

bool isForTools(std::string_view entry) {
    const auto name = entry.substr(0, entry.find('='));
    return name.starts_with("LC_") || std::ranges::find(toolVariables, name) != std::end(toolVariables);
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

std::vector<std::string> seat::toolEnvironment() {
    auto environment = childEnvironment();
    std::erase_if(environment, [](const std::string& entry) { return !isForTools(entry); });
    return environment;
}
