#pragma once

#include "platform/runtime/NSObject.h"

#include <string>

// Why an operation failed, in words that name the operation and its object.
class NSError final : public NSObject {
    NS_CLASS(NSError)

    static std::shared_ptr<NSError> errorWithDescription(std::string description, int code = 0);

    const std::string& localizedDescription() const { return m_description; }
    int code() const { return m_code; }

private:
    std::string m_description;
    int m_code = 0;
};
