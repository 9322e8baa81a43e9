#pragma once

// Files by their real paths. Failures come back as an error whose code is the system's error number and whose text
// names the operation, the file and the reason; nothing is logged here.

#include "platform/foundation/NSData.h"
#include "platform/foundation/NSError.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace host {

// nil, and `error` set if it is not null, when the file cannot be read, is no regular file (a pipe is not waited for),
// or is larger than `maximumLength`.
std::shared_ptr<NSData> readFile(const std::string& path, std::size_t maximumLength, std::shared_ptr<NSError>* error);

// "<operation> <path>: <the system's words for the number>".
std::shared_ptr<NSError> fileError(const char* operation, const std::string& path, int number);

} // namespace host
