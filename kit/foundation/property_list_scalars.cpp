#include "kit/foundation/property_list_scalars.h"

#include <charconv>
#include <chrono>
#include <cstdint>
#include <limits>

namespace {

template <class T, class... Base> std::optional<T> parse(std::string_view text, Base... base) {
    T value{};
    const char* const begin = text.data();
    const char* const end = begin + text.size();
    const auto [stop, error] = std::from_chars(begin, end, value, base...);
    if (error != std::errc() || stop != end) return std::nullopt;
    return value;
}

// As many digits as the text is long, nothing else.
std::optional<unsigned> digits(std::string_view text) {
    for (const char c : text)
        if (c < '0' || c > '9') return std::nullopt;
    return parse<unsigned>(text, 10);
}

} // namespace

std::optional<NSNumber> seat::integerFromText(std::string_view text) {
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) text.remove_prefix(1);
    const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
    if (hexadecimal) text.remove_prefix(2);

    const auto magnitude = parse<std::uint64_t>(text, hexadecimal ? 16 : 10);
    if (!magnitude) return std::nullopt;
    constexpr std::uint64_t most = std::numeric_limits<std::int64_t>::max();
    if (negative) {
        if (*magnitude > most + 1) return std::nullopt;
        return NSNumber::numberWithInteger(static_cast<std::int64_t>(0 - *magnitude));
    }
    if (*magnitude > most) return NSNumber::numberWithUnsignedLongLong(*magnitude);
    return NSNumber::numberWithInteger(static_cast<std::int64_t>(*magnitude));
}

std::optional<NSNumber> seat::realFromText(std::string_view text) {
    if (text.starts_with('+')) {
        text.remove_prefix(1);
        if (text.starts_with('-')) return std::nullopt;
    }
    // "nan(...)" carries a payload that not every reader knows.
    if (text.find('(') != std::string_view::npos) return std::nullopt;
    const auto value = parse<double>(text);
    return value ? std::optional(NSNumber::numberWithDouble(*value)) : std::nullopt;
}

std::optional<NSDate> seat::dateFromText(std::string_view text) {
    using namespace std::chrono;
    if (text.size() != 20 || text[4] != '-' || text[7] != '-' || text[10] != 'T' || text[13] != ':' ||
        text[16] != ':' || text[19] != 'Z')
        return std::nullopt;
    const auto y = digits(text.substr(0, 4)), m = digits(text.substr(5, 2)), d = digits(text.substr(8, 2));
    const auto h = digits(text.substr(11, 2)), min = digits(text.substr(14, 2)), s = digits(text.substr(17, 2));
    if (!y || !m || !d || !h || !min || !s || *h > 23 || *min > 59 || *s > 59) return std::nullopt;

    const year_month_day date{year(static_cast<int>(*y)), month(*m), day(*d)};
    if (!date.ok()) return std::nullopt;
    constexpr sys_days reference = 2001y / January / 1;
    const seconds since = (sys_days(date) - reference) + hours(*h) + minutes(*min) + seconds(*s);
    return NSDate{static_cast<double>(since.count())};
}
