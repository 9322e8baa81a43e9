#include "platform/foundation/NSData.h"

NS_CLASS_IMPLEMENTATION(NSData, NSObject)

std::shared_ptr<NSData> NSData::dataWithBytes(std::span<const std::uint8_t> bytes) {
    return dataWithVector({bytes.begin(), bytes.end()});
}

std::shared_ptr<NSData> NSData::dataWithVector(std::vector<std::uint8_t>&& bytes) {
    auto data = alloc();
    data->m_bytes = std::move(bytes);
    return data;
}

bool NSData::isEqual(const NSObject& other) const {
    const auto* const data = dynamic_cast<const NSData*>(&other);
    return data && data->m_bytes == m_bytes;
}
