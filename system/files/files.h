#pragma once

#include "kit/seat.h"

namespace seat {

// "<operation> <path>: <the system's words for the number>". What `readFile` and its like give back on a failure.
std::shared_ptr<NSError> fileError(const char* operation, const std::string& path, int number);

} // namespace seat
