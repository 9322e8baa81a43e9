#include "platform/foundation/NSError.h"

NS_CLASS_IMPLEMENTATION(NSError, NSObject)

std::shared_ptr<NSError> NSError::errorWithDescription(std::string description, int code) {
    auto error = alloc();
    error->m_description = std::move(description);
    error->m_code = code;
    return error;
}
