#include "platform/foundation/NSScanner.h"

#include <limits>

NS_CLASS_IMPLEMENTATION(NSScanner, NSObject)

namespace {

int hexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

} // namespace

std::shared_ptr<NSScanner> NSScanner::scannerWithString(std::string string) {
    auto scanner = alloc();
    scanner->m_string = std::move(string);
    return scanner;
}

bool NSScanner::scanHexInt(std::uint32_t* value) {
    const auto start = m_string.find_first_not_of(" \t\n\v\f\r", m_location);
    if (start == std::string::npos || hexDigit(m_string[start]) < 0) return false;

    std::size_t at = start;
    if (m_string[at] == '0' && at + 1 < m_string.size() && (m_string[at + 1] | 0x20) == 'x') at += 2;
    std::uint64_t scanned = 0;
    // Overflow goes by the value, not by the number of digits: leading zeros are free.
    for (; at < m_string.size() && hexDigit(m_string[at]) >= 0; ++at)
        scanned = std::min<std::uint64_t>(scanned * 16 + hexDigit(m_string[at]), std::uint64_t{1} << 32);
    m_location = at;
    if (value) *value = scanned >> 32 ? std::numeric_limits<std::uint32_t>::max() : static_cast<std::uint32_t>(scanned);
    return true;
}
