#pragma once

#include "platform/foundation/id.h"

#include <cstddef>
#include <vector>

// An ordered list of value objects; nil may stand in it, though no property list is written with one. Mutable: one
// class serves both roles. Not safe for concurrent change.
class NSArray final : public NSObject {
    NS_CLASS(NSArray)

    // Empty, and with these objects in this order.
    static std::shared_ptr<NSArray> array();
    static std::shared_ptr<NSArray> arrayWithObjects(std::vector<id> objects);

    std::size_t count() const { return m_objects.size(); }
    // nil when the index is out of range. The reference holds until the array changes.
    const id& objectAtIndex(std::size_t index) const;
    // At the end.
    void addObject(id object) { m_objects.push_back(std::move(object)); }

    // In order, while the array does not change.
    std::vector<id>::const_iterator begin() const { return m_objects.begin(); }
    std::vector<id>::const_iterator end() const { return m_objects.end(); }

    // Another array with equal objects in the same order.
    bool isEqual(const NSObject& other) const override;

private:
    std::vector<id> m_objects;
};
