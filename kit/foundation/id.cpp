#include "platform/foundation/id.h"

#include "platform/foundation/NSString.h"

#include <algorithm>
#include <charconv>
#include <string_view>

namespace {

std::string_view withoutLeadingSpaces(std::string_view string) {
    return string.substr(std::min(string.find_first_not_of(" \t\n\v\f\r"), string.size()));
}

double realValue(std::string_view string) {
    string = withoutLeadingSpaces(string);
    if (string.starts_with('+')) string.remove_prefix(1);
    // Words that stand for no finite number are no numbers here.
    const auto digit = string.find_first_of("0123456789.");
    if (digit > 1 || (digit == 1 && string[0] != '-')) return 0;
    double value = 0;
    std::from_chars(string.data(), string.data() + string.size(), value);
    return value;
}

bool truth(std::string_view string) {
    string = withoutLeadingSpaces(string);
    if (string.empty()) return false;
    if (std::string_view("YyTt").find(string[0]) != std::string_view::npos) return true;
    // A sign and zeros may stand before the digit that counts.
    if (string[0] == '+' || string[0] == '-') string.remove_prefix(1);
    const auto deciding = string.find_first_not_of('0');
    return deciding != std::string_view::npos && string[deciding] >= '1' && string[deciding] <= '9';
}

} // namespace

Class id::classValue() const {
    const auto* const held = std::get_if<Class>(&m_value);
    return held ? *held : nullptr;
}

std::int64_t id::integerValue() const {
    if (number()) return number()->integerValue();
    return string() ? NSStringIntegerValue(*string()) : 0;
}

double id::doubleValue() const {
    if (number()) return number()->doubleValue();
    return string() ? realValue(*string()) : 0;
}

float id::floatValue() const { return number() ? number()->floatValue() : static_cast<float>(doubleValue()); }

bool id::boolValue() const {
    if (number()) return number()->boolValue();
    return string() && truth(*string());
}

bool operator==(const id& a, const id& b) {
    if (a.m_value.index() != b.m_value.index()) return false;
    const auto* const left = std::get_if<std::shared_ptr<NSObject>>(&a.m_value);
    if (!left) return a.m_value == b.m_value;
    const auto& right = std::get<std::shared_ptr<NSObject>>(b.m_value);
    return *left == right || (*left)->isEqual(*right);
}
