#pragma once

#include "kit/seat.h"
#include "system/files/Descriptor.h"

namespace seat {

// "<operation> <path>: <the system's words for the number>". What `readFile` and its like give back on a failure.
std::shared_ptr<NSError> fileError(const char* operation, const std::string& path, int number);

// As readFile(), from the start of a file that is open and has not been read; `path` is what messages call it.
std::shared_ptr<NSData> readOpenedFile(const Descriptor& file, const std::string& path, std::size_t maximumLength,
                                       std::shared_ptr<NSError>* error);

} // namespace seat
