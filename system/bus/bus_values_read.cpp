#include "system/bus/bus_values.h"

#include "platform/foundation/NSArray.h"
#include "platform/foundation/NSData.h"

#include <cstdint>
#include <cstring>
#include <dbus/dbus.h>

namespace {

class Reader {
public:
    explicit Reader(std::string& problem) : m_problem(problem) {}

    // nullopt when the value is refused.
    std::optional<id> value(DBusMessageIter& at, int depth);

private:
    template <class T> static T basic(DBusMessageIter& at) {
        T result{};
        ::dbus_message_iter_get_basic(&at, static_cast<void*>(&result));
        return result;
    }
    std::optional<id> string(DBusMessageIter& at);
    std::optional<id> array(DBusMessageIter& at, int depth);
    std::optional<id> dictionary(DBusMessageIter& entries, int depth);
    std::optional<id> bytes(DBusMessageIter& elements);
    std::optional<id> structure(DBusMessageIter& at, int depth);
    std::optional<id> refuse(const char* reason) {
        m_problem = reason;
        return std::nullopt;
    }

    std::string& m_problem;
    int m_values = 0;
    std::size_t m_bytes = 0;
};

std::optional<id> Reader::value(DBusMessageIter& at, int depth) {
    if (depth > seat::busValueDepth) return refuse("its values lie too deep");
    if (++m_values > seat::busValueCount) return refuse("it has too many values");
    switch (::dbus_message_iter_get_arg_type(&at)) {
    case DBUS_TYPE_STRING:
    case DBUS_TYPE_OBJECT_PATH:
    case DBUS_TYPE_SIGNATURE:
        return string(at);
    case DBUS_TYPE_BOOLEAN:
        return id(NSNumber::numberWithBool(basic<dbus_bool_t>(at) != FALSE));
    case DBUS_TYPE_BYTE:
        return id(NSNumber::numberWithUnsignedInt(basic<std::uint8_t>(at)));
    case DBUS_TYPE_INT16:
        return id(NSNumber::numberWithInt(basic<std::int16_t>(at)));
    case DBUS_TYPE_UINT16:
        return id(NSNumber::numberWithUnsignedInt(basic<std::uint16_t>(at)));
    case DBUS_TYPE_INT32:
        return id(NSNumber::numberWithInt(basic<std::int32_t>(at)));
    case DBUS_TYPE_UINT32:
        return id(NSNumber::numberWithUnsignedInt(basic<std::uint32_t>(at)));
    case DBUS_TYPE_INT64:
        return id(NSNumber::numberWithInteger(basic<std::int64_t>(at)));
    case DBUS_TYPE_UINT64:
        return id(NSNumber::numberWithUnsignedLongLong(basic<std::uint64_t>(at)));
    case DBUS_TYPE_DOUBLE:
        return id(NSNumber::numberWithDouble(basic<double>(at)));
    case DBUS_TYPE_ARRAY:
        return array(at, depth);
    case DBUS_TYPE_VARIANT: {
        DBusMessageIter inner;
        ::dbus_message_iter_recurse(&at, &inner);
        return value(inner, depth + 1);
    }
    case DBUS_TYPE_STRUCT:
        return structure(at, depth);
    default:
        return refuse("it has a value of a type that means nothing here");
    }
}

std::optional<id> Reader::string(DBusMessageIter& at) {
    const char* const text = basic<const char*>(at);
    m_bytes += std::strlen(text);
    if (m_bytes > seat::busValueBytes) return refuse("it is too long");
    return id(text);
}

std::optional<id> Reader::array(DBusMessageIter& at, int depth) {
    DBusMessageIter elements;
    ::dbus_message_iter_recurse(&at, &elements);
    switch (::dbus_message_iter_get_element_type(&at)) {
    case DBUS_TYPE_DICT_ENTRY:
        return dictionary(elements, depth);
    case DBUS_TYPE_BYTE:
        return bytes(elements);
    default:
        break;
    }
    const auto result = NSArray::array();
    for (; ::dbus_message_iter_get_arg_type(&elements) != DBUS_TYPE_INVALID; ::dbus_message_iter_next(&elements)) {
        auto element = value(elements, depth + 1);
        if (!element) return std::nullopt;
        result->addObject(std::move(*element));
    }
    return id(result);
}

std::optional<id> Reader::structure(DBusMessageIter& at, int depth) {
    DBusMessageIter members;
    ::dbus_message_iter_recurse(&at, &members);
    const auto result = NSArray::array();
    for (; ::dbus_message_iter_get_arg_type(&members) != DBUS_TYPE_INVALID; ::dbus_message_iter_next(&members)) {
        auto member = value(members, depth + 1);
        if (!member) return std::nullopt;
        result->addObject(std::move(*member));
    }
    return id(result);
}

std::optional<id> Reader::dictionary(DBusMessageIter& entries, int depth) {
    const auto result = NSMutableDictionary::dictionary();
    for (; ::dbus_message_iter_get_arg_type(&entries) != DBUS_TYPE_INVALID; ::dbus_message_iter_next(&entries)) {
        DBusMessageIter entry;
        ::dbus_message_iter_recurse(&entries, &entry);
        if (::dbus_message_iter_get_arg_type(&entry) != DBUS_TYPE_STRING)
            return refuse("it has a dictionary whose keys are no strings");
        const auto key = string(entry);
        if (!key) return std::nullopt;
        ::dbus_message_iter_next(&entry);
        auto object = value(entry, depth + 1);
        if (!object) return std::nullopt;
        result->setObject_forKey(std::move(*object), *key->string());
    }
    return id(result);
}

std::optional<id> Reader::bytes(DBusMessageIter& elements) {
    const std::uint8_t* first = nullptr;
    int count = 0;
    ::dbus_message_iter_get_fixed_array(&elements, static_cast<void*>(&first), &count);
    m_bytes += static_cast<std::size_t>(count);
    if (m_bytes > seat::busValueBytes) return refuse("it is too long");
    return id(NSData::dataWithBytes({first, static_cast<std::size_t>(count)}));
}

} // namespace

std::optional<std::vector<id>> seat::readArguments(DBusMessage& message, std::string& problem) {
    std::vector<id> arguments;
    DBusMessageIter at;
    if (!::dbus_message_iter_init(&message, &at)) return arguments;
    Reader reader(problem);
    for (; ::dbus_message_iter_get_arg_type(&at) != DBUS_TYPE_INVALID; ::dbus_message_iter_next(&at)) {
        auto argument = reader.value(at, 0);
        if (!argument) return std::nullopt;
        arguments.push_back(std::move(*argument));
    }
    return arguments;
}
