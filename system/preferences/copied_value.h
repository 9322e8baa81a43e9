#pragma once

#include "platform/foundation/id.h"

namespace seat {

// A copy that may fail for want of memory. The library's own copy of a variant then destroys the text that it has not
// made.
inline id copiedValue(const id& value) {
    const auto* const text = value.string();
    return text ? id(std::string(*text)) : value;
}

} // namespace seat
