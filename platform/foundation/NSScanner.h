#pragma once

#include "platform/runtime/NSObject.h"

#include <cstddef>
#include <cstdint>
#include <string>

// Reads numbers out of a string, one after the other. Not for several threads at once.
class NSScanner final : public NSObject {
    NS_CLASS(NSScanner)

    // Begins at the string's first character. Never nil.
    static std::shared_ptr<NSScanner> scannerWithString(std::string string);

    // Skips white space (tabs and newlines too), accepts "0x" or "0X", reads hexadecimal digits up to the first other
    // character. Too large for 32 bits: all ones. False, and `value` untouched, when no number can be read; "0x" alone
    // reads as 0. What was read is behind it, so that the next call goes on there. `value` may be null.
    bool scanHexInt(std::uint32_t* value);

private:
    std::string m_string;
    std::size_t m_location = 0;
};
