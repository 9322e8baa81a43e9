#include "platform/foundation/NSCoder.h"

NS_CLASS_IMPLEMENTATION(NSCoder, NSObject)

std::shared_ptr<NSCoder> NSCoder::coderWithDictionary(std::shared_ptr<NSDictionary> values) {
    auto coder = alloc();
    coder->m_values = std::move(values);
    return coder;
}
