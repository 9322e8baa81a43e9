#include "platform/foundation/NSArray.h"

NS_CLASS_IMPLEMENTATION(NSArray, NSObject)

std::shared_ptr<NSArray> NSArray::array() { return alloc(); }

std::shared_ptr<NSArray> NSArray::arrayWithObjects(std::vector<id> objects) {
    auto array = alloc();
    array->m_objects = std::move(objects);
    return array;
}

const id& NSArray::objectAtIndex(std::size_t index) const {
    static const auto* const nil = new id;
    return index < m_objects.size() ? m_objects[index] : *nil;
}

bool NSArray::isEqual(const NSObject& other) const {
    const auto* const array = dynamic_cast<const NSArray*>(&other);
    return array && (array == this || array->m_objects == m_objects);
}
