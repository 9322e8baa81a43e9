#include "platform/foundation/NSString.h"

#include "kit/seat.h"

#include <charconv>
#include <cstdarg>
#include <cstdio>
#include <limits>

std::int64_t NSStringIntegerValue(std::string_view string) {
    const auto start = string.find_first_not_of(" \t\n\v\f\r");
    if (start == std::string_view::npos) return 0;
    string.remove_prefix(start);
    // from_chars takes no plus sign, and "+-3" is no number.
    if (string.starts_with('+')) string.remove_prefix(string.substr(1).starts_with('-') ? string.size() : 1);

    std::int64_t value = 0;
    const auto [end, error] = std::from_chars(string.data(), string.data() + string.size(), value);
    if (error == std::errc::result_out_of_range)
        return string.starts_with('-') ? std::numeric_limits<std::int64_t>::min()
                                       : std::numeric_limits<std::int64_t>::max();
    return value;
}

std::string NSStringFromInteger(std::int64_t value) {
    char text[24];
    return {text, std::to_chars(text, text + sizeof text, value).ptr};
}

std::string NSStringWithFormat(const char* format, ...) {
    const seat::PlainNumbers plain;
    char text[256];
    std::va_list arguments;
    va_start(arguments, format);
    const int wanted = std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    if (wanted < 0) return {};
    if (static_cast<std::size_t>(wanted) < sizeof text) return {text, static_cast<std::size_t>(wanted)};

    std::string longer(static_cast<std::size_t>(wanted), '\0');
    va_start(arguments, format);
    std::vsnprintf(longer.data(), longer.size() + 1, format, arguments);
    va_end(arguments);
    return longer;
}
