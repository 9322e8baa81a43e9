#include "kit/foundation/property_list.h"
#include "kit/foundation/utf8.h"
#include "platform/foundation/NSArray.h"
#include "platform/foundation/NSDictionary.h"

#include <bit>
#include <cmath>
#include <cstring>
#include <vector>

namespace {

using namespace seat;

// How many bytes a number takes: 1, 2, 4 or 8.
unsigned width(std::uint64_t value) { return value < 0x100 ? 1 : value < 0x10000 ? 2 : value >> 32 ? 8 : 4; }

// Values are laid out level by level, so that what a container holds has consecutive numbers, and nothing needs to be
// looked up. Equal values are written once each: finding them would cost more than it saves here.
class BinaryWriter {
public:
    std::shared_ptr<NSData> write(const id& value, std::string& refusal) {
        if (!value) {
            refusal = "is nil";
            return nullptr;
        }
        if (collect(value)) writeObjects();
        if (m_length > propertyListMaximumLength) refuse(propertyListTooLarge);
        m_bytes.resize(m_length);
        if (m_refusal.empty()) return NSData::dataWithVector(std::move(m_bytes));
        refusal = m_refusal;
        return nullptr;
    }

private:
    // Points into the value that is written, which does not change meanwhile.
    struct Item {
        const void* value; // an id, or the std::string of a key
        std::uint32_t firstChild;
        std::uint8_t depth; // the levels of containers down to here, this one included if it is one
        bool isKey;

        const std::string& key() const { return *static_cast<const std::string*>(value); }
        const id& object() const { return *static_cast<const id*>(value); }
    };

    bool refuse(std::string reason) {
        if (m_refusal.empty()) m_refusal = std::move(reason);
        return false;
    }

    bool collect(const id& value);
    bool collectChildren(std::size_t index);
    bool addValue(const id& value, std::size_t depth);
    bool addKey(const std::string& key, std::size_t depth);
    bool checkText(const std::string& text) { return isUTF8(text) || refuse("holds a text that is not UTF-8"); }

    void writeObjects();
    void writeItem(const Item& item);
    void writeContainer(std::uint8_t kind, std::size_t count, std::size_t children, std::uint32_t firstChild);
    void writeText(const std::string& text);
    void writeNumber(const NSNumber& number);
    void writeMarker(std::uint8_t kind, std::size_t count);
    void writeInteger(std::uint64_t value);
    // The next `size` bytes, to be filled in.
    std::uint8_t* room(std::size_t size) {
        if (m_length + size > m_bytes.size()) m_bytes.resize(2 * (m_length + size));
        m_length += size;
        return m_bytes.data() + m_length - size;
    }
    void append(std::uint64_t value, unsigned size) {
        std::uint8_t* const bytes = room(size);
        for (unsigned i = 0; i < size; ++i) bytes[i] = static_cast<std::uint8_t>(value >> 8 * (size - 1 - i));
    }
    void appendBytes(const void* bytes, std::size_t size) {
        if (size > 0) std::memcpy(room(size), bytes, size);
    }

    std::string m_refusal;
    std::vector<Item> m_items;
    std::size_t m_values = 0;
    unsigned m_referenceSize = 0;
    std::vector<std::uint8_t> m_bytes; // of which m_length are in use
    std::size_t m_length = 0;
};

bool BinaryWriter::addValue(const id& value, std::size_t depth) {
    if (!value) return refuse("holds nil");
    if (value.classValue()) return refuse("holds a class");
    if (value.string() && !checkText(*value.string())) return false;
    if (value.date() && !std::isfinite(value.date()->timeIntervalSinceReferenceDate))
        return refuse("holds a date that is no moment");
    if (++m_values > propertyListMaximumValues)
        return refuse("holds more than " + std::to_string(propertyListMaximumValues) + " values, or refers to itself");
    m_items.push_back({&value, 0, static_cast<std::uint8_t>(depth), false});
    return true;
}

bool BinaryWriter::addKey(const std::string& key, std::size_t depth) {
    if (!checkText(key)) return false;
    m_items.push_back({&key, 0, static_cast<std::uint8_t>(depth), true});
    return true;
}

bool BinaryWriter::collect(const id& value) {
    if (!addValue(value, 1)) return false;
    for (std::size_t index = 0; index < m_items.size(); ++index)
        if (!m_items[index].isKey && !collectChildren(index)) return false;
    return true;
}

bool BinaryWriter::collectChildren(std::size_t index) {
    const id& value = m_items[index].object();
    m_items[index].firstChild = static_cast<std::uint32_t>(m_items.size());
    if (value.number() || value.string() || value.date() || value.objectPointer<NSData>()) return true;
    // A circle ends here as well.
    if (m_items[index].depth > propertyListMaximumDepth)
        return refuse("is nested deeper than " + std::to_string(propertyListMaximumDepth) + ", or refers to itself");
    const std::size_t depth = m_items[index].depth + 1u;
    if (const auto* const array = value.objectPointer<NSArray>()) {
        for (const id& object : *array)
            if (!addValue(object, depth)) return false;
        return true;
    }
    if (const auto* const dictionary = value.objectPointer<NSMutableDictionary>()) {
        if (dictionary->count() > m_items.size()) m_items.reserve(m_items.size() + 2 * dictionary->count());
        dictionary->enumerate([&](const std::string& key, const id&) { return addKey(key, depth); });
        dictionary->enumerate([&](const std::string&, const id& object) { return addValue(object, depth); });
        return m_refusal.empty();
    }
    return refuse("holds an object that is no property-list value");
}

void BinaryWriter::writeObjects() {
    m_referenceSize = width(m_items.size() - 1);
    m_bytes.resize(12 * (m_items.size() + 8)); // what short keys with numbers take
    appendBytes("bplist00", 8);

    std::vector<std::uint32_t> offsets;
    offsets.reserve(m_items.size());
    for (const Item& item : m_items) {
        offsets.push_back(static_cast<std::uint32_t>(m_length));
        writeItem(item);
        if (m_length > propertyListMaximumLength) return;
    }
    const std::size_t table = m_length;
    const unsigned offsetSize = width(table);
    for (const std::uint32_t offset : offsets) append(offset, offsetSize);
    append(0, 6);
    append(offsetSize, 1);
    append(m_referenceSize, 1);
    append(m_items.size(), 8);
    append(0, 8); // the outermost value is the first
    append(table, 8);
}

void BinaryWriter::writeItem(const Item& item) {
    if (item.isKey) return writeText(item.key());
    const id& value = item.object();
    if (value.number()) return writeNumber(*value.number());
    if (value.string()) return writeText(*value.string());
    if (value.date()) {
        append(0x33, 1);
        append(std::bit_cast<std::uint64_t>(value.date()->timeIntervalSinceReferenceDate), 8);
    } else if (const auto* const data = value.objectPointer<NSData>()) {
        writeMarker(0x40, data->length());
        appendBytes(data->bytes().data(), data->length());
    } else if (const auto* const array = value.objectPointer<NSArray>()) {
        writeContainer(0xa0, array->count(), array->count(), item.firstChild);
    } else if (const auto* const dictionary = value.objectPointer<NSMutableDictionary>()) {
        writeContainer(0xd0, dictionary->count(), 2 * dictionary->count(), item.firstChild);
    }
}

void BinaryWriter::writeContainer(std::uint8_t kind, std::size_t count, std::size_t children,
                                  std::uint32_t firstChild) {
    writeMarker(kind, count);
    for (std::size_t i = 0; i < children; ++i) append(firstChild + i, m_referenceSize);
}

void BinaryWriter::writeText(const std::string& text) {
    if (isASCII(text)) {
        writeMarker(0x50, text.size());
        appendBytes(text.data(), text.size());
    } else {
        const std::size_t units = utf16Length(text);
        writeMarker(0x60, units);
        writeUTF16BigEndian(room(2 * units), text);
    }
}

void BinaryWriter::writeNumber(const NSNumber& number) {
    switch (number.type()) {
    case NSNumber::Type::Bool:
        return append(number.boolValue() ? 0x09 : 0x08, 1);
    case NSNumber::Type::Float:
        append(0x22, 1);
        return append(std::bit_cast<std::uint32_t>(number.floatValue()), 4);
    case NSNumber::Type::Double:
        append(0x23, 1);
        return append(std::bit_cast<std::uint64_t>(number.doubleValue()), 8);
    case NSNumber::Type::UnsignedInt:
    case NSNumber::Type::UnsignedLongLong:
        return writeInteger(number.unsignedLongLongValue());
    default:
        break;
    }
    const std::int64_t value = number.integerValue();
    if (value >= 0) return writeInteger(static_cast<std::uint64_t>(value));
    // Only eight bytes are read as signed.
    append(0x13, 1);
    append(static_cast<std::uint64_t>(value), 8);
}

void BinaryWriter::writeInteger(std::uint64_t value) {
    if (value >> 63) {
        append(0x14, 1);
        append(0, 8);
        return append(value, 8);
    }
    const unsigned size = width(value);
    append(0x10u | static_cast<unsigned>(std::countr_zero(size)), 1);
    append(value, size);
}

void BinaryWriter::writeMarker(std::uint8_t kind, std::size_t count) {
    if (count < 0xf) return append(kind | count, 1);
    append(kind | 0xfu, 1);
    writeInteger(count);
}

} // namespace

std::shared_ptr<NSData> seat::writeBinaryPropertyList(const id& value, std::string& refusal) {
    return BinaryWriter().write(value, refusal);
}
