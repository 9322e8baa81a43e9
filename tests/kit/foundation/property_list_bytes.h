#pragma once

// Hand-made property lists and short words for the values in them.

#include "kit/foundation/property_list.h"
#include "platform/foundation/NSArray.h"
#include "platform/foundation/NSData.h"
#include "platform/foundation/NSDictionary.h"
#include "platform/foundation/NSNumber.h"
#include "platform/foundation/id.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace property_list_testing {

using Bytes = std::vector<std::uint8_t>;

inline Bytes bytesOf(std::string_view text) { return {text.begin(), text.end()}; }

inline id integer(std::int64_t value) { return NSNumber::numberWithInteger(value); }
inline id real(double value) { return NSNumber::numberWithDouble(value); }
inline id data(std::string_view text) { return NSData::dataWithVector(bytesOf(text)); }
inline id array(std::vector<id> objects) { return NSArray::arrayWithObjects(std::move(objects)); }
inline id dictionary(std::initializer_list<std::pair<const char*, id>> entries) {
    const auto made = NSMutableDictionary::dictionary();
    for (const auto& [key, value] : entries) made->setObject_forKey(value, key);
    return made;
}

struct Read {
    id value;
    std::string refusal;
};
inline Read read(const Bytes& bytes) {
    Read result;
    result.value = seat::readPropertyList(bytes, nullptr, result.refusal);
    return result;
}

// The body of an XML property list.
inline Read readXML(const std::string& body) {
    return read(bytesOf("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                        "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                        "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
                        "<plist version=\"1.0\">" +
                        body + "</plist>\n"));
}

// A binary property list of these objects, with references and offsets of a given size; the first is the outermost.
struct Binary {
    std::vector<Bytes> objects;
    std::uint8_t referenceSize = 1;
    std::uint8_t offsetSize = 2;
    std::uint64_t top = 0;

    Bytes bytes() const {
        Bytes all = bytesOf("bplist00");
        std::vector<std::size_t> offsets;
        for (const Bytes& object : objects) {
            offsets.push_back(all.size());
            all.insert(all.end(), object.begin(), object.end());
        }
        const std::size_t table = all.size();
        for (const std::size_t offset : offsets) append(all, offset, offsetSize);
        append(all, 0, 6);
        append(all, offsetSize, 1);
        append(all, referenceSize, 1);
        append(all, objects.size(), 8);
        append(all, top, 8);
        append(all, table, 8);
        return all;
    }

    static void append(Bytes& bytes, std::uint64_t value, unsigned size) {
        for (unsigned i = size; i-- > 0;) bytes.push_back(static_cast<std::uint8_t>(i < 8 ? value >> 8 * i : 0));
    }
};

inline Read readBinary(std::vector<Bytes> objects) { return read(Binary{std::move(objects)}.bytes()); }

} // namespace property_list_testing
