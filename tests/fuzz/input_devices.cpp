#include "services/jvninputd/udev_properties.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <list>
#include <string>

// What a device says of itself: lines, one for each attribute in the order in which they are asked for.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string lines(reinterpret_cast<const char*>(data), size);
    std::size_t at = 0;
    std::list<std::string> given; // what is looked up stays, as with udev
    const auto next = [&](const char*) -> const char* {
        if (at >= lines.size()) return nullptr;
        const std::size_t end = std::min(lines.find('\n', at), lines.size());
        given.push_back(lines.substr(at, end - at));
        at = end + 1;
        return given.back().c_str();
    };
    const auto identity = jvninputd::identityOf(next);
    if (identity.name.empty() || identity.name.size() > 255) std::abort();
    for (const char character : identity.name)
        if (static_cast<unsigned char>(character) < ' ') std::abort();
    (void)jvninputd::kindOf(next);

    // An address is what is printed again as it was read.
    at = 0;
    const char* text = next("");
    if (const auto address = jvninputd::addressFrom(text)) {
        char printed[18];
        std::snprintf(printed, sizeof printed, "%02x:%02x:%02x:%02x:%02x:%02x", (*address)[0], (*address)[1],
                      (*address)[2], (*address)[3], (*address)[4], (*address)[5]);
        std::string lower = text;
        for (char& character : lower)
            character = static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
        if (lower != printed) std::abort();
    }
    return 0;
}
