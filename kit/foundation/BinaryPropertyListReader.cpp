#include "kit/foundation/property_list.h"
#include "kit/foundation/utf8.h"
#include "platform/foundation/NSArray.h"
#include "platform/foundation/NSDictionary.h"

#include <bit>
#include <cmath>
#include <string_view>
#include <vector>

namespace {

using namespace seat;

using Bytes = std::span<const std::uint8_t>;

constexpr std::size_t headerLength = 8;
constexpr std::size_t trailerLength = 32;
// Every value may have a key of its own.
constexpr std::size_t mostObjects = 2 * propertyListMaximumValues;
// Of all texts and data, each counted as often as it is referred to.
constexpr std::size_t mostBytes = 2 * propertyListMaximumLength;

enum Kind : std::uint8_t {
    KindSingle = 0x0,
    KindInteger = 0x1,
    KindReal = 0x2,
    KindDate = 0x3,
    KindData = 0x4,
    KindASCII = 0x5,
    KindUTF16 = 0x6,
    KindUID = 0x8,
    KindArray = 0xa,
    KindDictionary = 0xd,
};

std::uint64_t bigEndian(Bytes bytes) {
    // Nearly always.
    if (bytes.size() == 1) return bytes[0];
    if (bytes.size() == 2) return static_cast<std::uint64_t>(bytes[0] << 8 | bytes[1]);
    std::uint64_t value = 0;
    for (const std::uint8_t byte : bytes) value = value << 8 | byte;
    return value;
}

double dateOf(Bytes body) { return std::bit_cast<double>(bigEndian(body)); }

std::string_view characters(Bytes bytes) { return {reinterpret_cast<const char*>(bytes.data()), bytes.size()}; }

// Two passes: the first looks at each object once and finds every fault of the structure without building anything; the
// second builds.
class BinaryReader {
public:
    explicit BinaryReader(Bytes bytes) : m_bytes(bytes) {}

    id read(std::string& refusal) {
        id value;
        if (readTrailer() && examine(m_top, 1)) value = build(m_top);
        if (!m_refusal) return value;
        refusal = m_refusal;
        return nullptr;
    }

private:
    // An object as its marker describes it. `body` holds the bytes of a scalar, or the references of a container.
    struct Object {
        Kind kind;
        std::uint8_t marker;
        std::size_t count;
        Bytes body;
    };
    // What the first pass found out; sums over everything below the object.
    struct Facts {
        std::uint32_t values = 0; // 0: not looked at yet
        std::uint32_t bytes = 0;
        std::uint8_t height = 0; // levels of containers
        bool isOpen = false;     // being looked at: a reference to it closes a circle
        bool isText = false;
    };

    bool refuse(const char* reason) {
        if (!m_refusal) m_refusal = reason;
        return false;
    }

    bool readTrailer();
    bool readObject(std::size_t index, Object& object);
    bool readCount(std::size_t& at, std::uint8_t low, std::size_t& count);
    bool examine(std::size_t index, std::size_t depth);
    enum class Role { Key, Value };
    bool examineChild(Facts& parent, std::size_t index, std::size_t depth, Role role);
    bool isScalarSound(const Object& object);
    std::size_t reference(const Object& object, std::size_t at) const {
        return bigEndian(object.body.subspan(at * m_referenceSize, m_referenceSize));
    }
    id build(std::size_t index);
    id buildScalar(const Object& object);
    static std::optional<NSNumber> integer(Bytes body);

    Bytes m_bytes;
    const char* m_refusal = nullptr;
    std::size_t m_offsetSize = 0;
    std::size_t m_referenceSize = 0;
    std::size_t m_objectCount = 0;
    std::size_t m_top = 0;
    std::size_t m_table = 0; // where the offsets begin and the objects end
    std::vector<Facts> m_facts;
    std::size_t m_references = 0;
    std::size_t m_scalarBytes = 0;
};

bool BinaryReader::readTrailer() {
    if (!characters(m_bytes).starts_with("bplist00")) return refuse("is of an unknown version");
    if (m_bytes.size() < headerLength + trailerLength + 2) return refuse("is cut");
    const Bytes trailer = m_bytes.last(trailerLength);
    m_offsetSize = trailer[6];
    m_referenceSize = trailer[7];
    const std::uint64_t count = bigEndian(trailer.subspan(8, 8));
    const std::uint64_t top = bigEndian(trailer.subspan(16, 8));
    const std::uint64_t table = bigEndian(trailer.subspan(24, 8));
    const std::size_t end = m_bytes.size() - trailerLength;
    if (m_offsetSize < 1 || m_offsetSize > 8 || m_referenceSize < 1 || m_referenceSize > 8 || count < 1 ||
        top >= count || table <= headerLength || table > end || count > (end - table) / m_offsetSize ||
        table + count * m_offsetSize != end)
        return refuse("is cut or damaged at its end");
    if (count > mostObjects) return refuse(propertyListTooMany);
    m_objectCount = count;
    m_top = top;
    m_table = table;
    m_facts.resize(count);
    return true;
}

bool BinaryReader::readCount(std::size_t& at, std::uint8_t low, std::size_t& count) {
    if (low != 0xf) {
        count = low;
        return true;
    }
    if (at >= m_table || m_bytes[at] >> 4 != KindInteger || (m_bytes[at] & 0xf) > 3)
        return refuse("has an object of unreadable length");
    const std::size_t size = std::size_t{1} << (m_bytes[at] & 0xf);
    ++at;
    if (size > m_table - at) return refuse("has an object that runs over its end");
    count = bigEndian(m_bytes.subspan(at, size));
    at += size;
    return true;
}

bool BinaryReader::readObject(std::size_t index, Object& object) {
    if (index >= m_objectCount) return refuse("refers to an object that it does not hold");
    std::size_t at = bigEndian(m_bytes.subspan(m_table + index * m_offsetSize, m_offsetSize));
    if (at < headerLength || at >= m_table) return refuse("has an object outside of it");
    object.marker = m_bytes[at++];
    object.kind = static_cast<Kind>(object.marker >> 4);
    const std::uint8_t low = object.marker & 0xf;
    std::size_t unit = 1;
    object.count = 0;
    switch (object.kind) {
    case KindSingle:
        if (low != 8 && low != 9) return refuse("has a value of an unknown type");
        break;
    case KindInteger:
    case KindReal:
    case KindDate: {
        const bool isKnown = object.kind == KindInteger ? low <= 4
                             : object.kind == KindReal  ? low == 2 || low == 3
                                                        : low == 3;
        if (!isKnown) return refuse("has a number of an unknown size");
        object.count = std::size_t{1} << low;
        break;
    }
    case KindData:
    case KindASCII:
    case KindUTF16:
        unit = object.kind == KindUTF16 ? 2 : 1;
        if (!readCount(at, low, object.count)) return false;
        break;
    case KindArray:
    case KindDictionary:
        unit = object.kind == KindArray ? m_referenceSize : 2 * m_referenceSize;
        if (!readCount(at, low, object.count)) return false;
        // A file that is too short for them is cut rather than too large.
        if (object.count <= (m_table - at) / unit && object.count > propertyListMaximumValues)
            return refuse(propertyListTooMany);
        break;
    case KindUID:
        return refuse("has an archiver's reference, which is no value");
    default:
        return refuse("has a value of an unknown type");
    }
    if (object.count > (m_table - at) / unit) return refuse("has an object that runs over its end");
    object.body = m_bytes.subspan(at, object.count * unit);
    return true;
}

bool BinaryReader::examine(std::size_t index, std::size_t depth) {
    Object object;
    if (!readObject(index, object)) return false;
    Facts& facts = m_facts[index];
    facts.values = 1;
    if (object.kind == KindArray || object.kind == KindDictionary) {
        if (depth > propertyListMaximumDepth) return refuse(propertyListTooDeep);
        // Objects may overlap, so that a small file can hold many long ones: the work has the same bound as the values.
        m_references += object.count;
        if (m_references > propertyListMaximumValues) return refuse(propertyListTooMany);
        facts.height = 1;
        facts.isOpen = true;
        const std::size_t keys = object.kind == KindDictionary ? object.count : 0;
        for (std::size_t i = 0; i < keys; ++i)
            if (!examineChild(facts, reference(object, i), depth, Role::Key)) return false;
        for (std::size_t i = 0; i < object.count; ++i)
            if (!examineChild(facts, reference(object, keys + i), depth, Role::Value)) return false;
    } else {
        m_scalarBytes += object.body.size();
        if (m_scalarBytes > mostBytes) return refuse("repeats its contents too often");
        if (!isScalarSound(object)) return false;
        facts.bytes = static_cast<std::uint32_t>(object.body.size());
        facts.isText = object.kind == KindASCII || object.kind == KindUTF16;
    }
    facts.isOpen = false;
    return true;
}

bool BinaryReader::examineChild(Facts& parent, std::size_t index, std::size_t depth, Role role) {
    if (index >= m_objectCount) return refuse("refers to an object that it does not hold");
    if (m_facts[index].isOpen) return refuse("refers to itself");
    if (m_facts[index].values == 0 && !examine(index, depth + 1)) return false;
    const Facts& child = m_facts[index];
    if (depth + child.height > propertyListMaximumDepth) return refuse(propertyListTooDeep);
    if (role == Role::Key) {
        if (!child.isText) return refuse("has a key that is no text");
    } else {
        parent.values += child.values;
    }
    parent.bytes += child.bytes;
    parent.height = std::max<std::uint8_t>(parent.height, child.height + 1);
    // The sums of a child are within the bounds already, so these cannot overflow.
    if (parent.values > propertyListMaximumValues) return refuse(propertyListTooMany);
    if (parent.bytes > mostBytes) return refuse("repeats its contents too often");
    return true;
}

bool BinaryReader::isScalarSound(const Object& object) {
    switch (object.kind) {
    case KindASCII:
        return isASCII(characters(object.body)) || refuse("has a text with bytes that are no ASCII");
    case KindUTF16:
        return isUTF16BigEndian(object.body) || refuse("has a text with half a surrogate pair");
    case KindInteger:
        return integer(object.body) || refuse("has an integer beyond 64 bits");
    case KindDate:
        return std::isfinite(dateOf(object.body)) || refuse("has a date that is no moment");
    default:
        return true;
    }
}

std::optional<NSNumber> BinaryReader::integer(Bytes body) {
    const std::uint64_t value = bigEndian(body.last(std::min<std::size_t>(body.size(), 8)));
    // Shorter than eight bytes is unsigned, eight bytes are signed, sixteen too.
    const bool isNegative = value >> 63;
    if (body.size() < 16) return NSNumber::numberWithInteger(static_cast<std::int64_t>(value));
    const std::uint64_t above = bigEndian(body.first(8));
    if (above == 0 && isNegative) return NSNumber::numberWithUnsignedLongLong(value);
    if (above != (isNegative ? ~std::uint64_t{0} : 0)) return std::nullopt;
    return NSNumber::numberWithInteger(static_cast<std::int64_t>(value));
}

id BinaryReader::buildScalar(const Object& object) {
    const auto bits = [&] { return bigEndian(object.body); };
    switch (object.kind) {
    case KindSingle:
        return NSNumber::numberWithBool(object.marker == 9);
    case KindInteger:
        return integer(object.body);
    case KindReal:
        if (object.body.size() == 4)
            return NSNumber::numberWithFloat(std::bit_cast<float>(static_cast<std::uint32_t>(bits())));
        return NSNumber::numberWithDouble(std::bit_cast<double>(bits()));
    case KindDate:
        return NSDate{dateOf(object.body)};
    case KindData:
        return NSData::dataWithBytes(object.body);
    case KindASCII:
        return std::string(characters(object.body));
    default:
        return utf8FromUTF16BigEndian(object.body);
    }
}

id BinaryReader::build(std::size_t index) {
    Object object;
    if (!readObject(index, object)) return nullptr;
    if (object.kind == KindArray) {
        std::vector<id> objects;
        objects.reserve(object.count);
        for (std::size_t i = 0; i < object.count && !m_refusal; ++i) objects.push_back(build(reference(object, i)));
        return NSArray::arrayWithObjects(std::move(objects));
    }
    if (object.kind != KindDictionary) return buildScalar(object);

    const auto dictionary = NSMutableDictionary::dictionary();
    dictionary->reserve(object.count);
    for (std::size_t i = 0; i < object.count && !m_refusal; ++i) {
        Object key;
        if (!readObject(reference(object, i), key)) return nullptr;
        id value = build(reference(object, object.count + i));
        // Of two with the same key the last one counts, as for everybody who reads the file.
        if (key.kind == KindASCII)
            dictionary->setObject_forKey(std::move(value), characters(key.body));
        else
            dictionary->setObject_forKey(std::move(value), utf8FromUTF16BigEndian(key.body));
    }
    return dictionary;
}

} // namespace

id seat::readBinaryPropertyList(std::span<const std::uint8_t> bytes, std::string& refusal) {
    return BinaryReader(bytes).read(refusal);
}
