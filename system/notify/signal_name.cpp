#include "system/notify/signal_name.h"

#include <algorithm>
#include <string_view>

namespace {

constexpr std::size_t longestName = 255; // the bus's own limit, for interface and member each

bool isDigit(char c) { return c >= '0' && c <= '9'; }

bool isPart(std::string_view part) {
    const auto allowed = [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || isDigit(c) || c == '_';
    };
    return !part.empty() && !isDigit(part.front()) && std::ranges::all_of(part, allowed);
}

} // namespace

std::optional<seat::BusSignal> seat::signalForNotification(const std::string& name) {
    int parts = 1;
    for (std::string_view rest = name;; ++parts) {
        const auto dot = rest.find('.');
        if (!isPart(rest.substr(0, dot))) return std::nullopt;
        if (dot == std::string_view::npos) break;
        rest.remove_prefix(dot + 1);
    }
    if (parts < 3 || name.size() > longestName) return std::nullopt;

    const auto dot = name.rfind('.');
    BusSignal signal{"/", name.substr(0, dot), name.substr(dot + 1)};
    signal.path += signal.interface;
    std::ranges::replace(signal.path, '.', '/');
    return signal;
}
