#pragma once

#include "platform/runtime/NSObject.h"

#include <string>

// Why an operation failed, in words that name the operation and its object. Immutable; any thread. A function that can
// give one takes a `std::shared_ptr<NSError>*`, which may be null, and writes to it only when it fails.
class NSError final : public NSObject {
    NS_CLASS(NSError)

    // Never nil.
    static std::shared_ptr<NSError> errorWithDescription(std::string description, int code = 0);

    // One line, without a full stop, fit for the log.
    const std::string& localizedDescription() const { return m_description; }
    // The system's error number (errno); 0 for a failure that has none, such as a file that is refused.
    int code() const { return m_code; }

private:
    std::string m_description;
    int m_code = 0;
};
