#include "system/bus/bus_values.h"

#include "platform/foundation/NSArray.h"
#include "platform/foundation/NSData.h"

#include <algorithm>
#include <cstdint>
#include <dbus/dbus.h>

namespace seat {

NS_CLASS_IMPLEMENTATION(BusDescriptor, NSObject)

std::shared_ptr<BusDescriptor> BusDescriptor::withDescriptor(int borrowed) {
    auto made = alloc();
    made->m_descriptor = borrowed;
    return made;
}

} // namespace seat

namespace {

using seat::BusDescriptor;

class Writer {
public:
    explicit Writer(DBusMessageIter& at) : m_at(at) {}

    bool append(const std::string& type, const id& value, int depth);

private:
    template <class T> bool basic(int type, T value) {
        return ::dbus_message_iter_append_basic(&m_at, type, static_cast<const void*>(&value)) != FALSE;
    }
    bool text(int type, const id& value) {
        const std::string* const string = value.string();
        if (!string || string->find('\0') != std::string::npos) return false;
        if (type == DBUS_TYPE_OBJECT_PATH && !::dbus_validate_path(string->c_str(), nullptr)) return false;
        return ::dbus_validate_utf8(string->c_str(), nullptr) && basic(type, string->c_str());
    }
    bool array(const std::string& elementType, const NSArray* values, int depth);
    bool bytes(const NSData& data);
    bool dictionary(const NSDictionary* values, int depth);
    bool variant(const id& value, int depth);
    // A container that did not get its value must not be closed.
    bool finish(DBusMessageIter& at, DBusMessageIter& inner, bool fits) {
        if (fits) return ::dbus_message_iter_close_container(&at, &inner) != FALSE;
        ::dbus_message_iter_abandon_container(&at, &inner);
        return false;
    }

    DBusMessageIter& m_at;
};

// The type as which a single value travels when the reader takes any; empty for what has parts.
std::string plainType(const id& value) {
    if (value.string()) return "s";
    if (value.objectPointer<BusDescriptor>()) return "h";
    const NSNumber* const number = value.number();
    if (!number) return "";
    switch (number->type()) {
    case NSNumber::Type::Bool:
        return "b";
    case NSNumber::Type::Int:
        return "i";
    case NSNumber::Type::Integer:
        return "x";
    case NSNumber::Type::UnsignedInt:
        return "u";
    case NSNumber::Type::UnsignedLongLong:
        return "t";
    case NSNumber::Type::Float:
    case NSNumber::Type::Double:
        return "d";
    }
    return "";
}

std::string naturalType(const id& value) {
    if (value.objectPointer<NSData>()) return "ay";
    if (value.objectPointer<NSDictionary>()) return "a{sv}";
    const auto* const array = value.objectPointer<NSArray>();
    if (!array) return plainType(value);
    if (array->count() == 0) return "as";
    const std::string first = plainType(array->objectAtIndex(0));
    const bool same = std::ranges::all_of(*array, [&first](const id& each) { return plainType(each) == first; });
    return "a" + (same && !first.empty() ? first : "v");
}

bool Writer::append(const std::string& type, const id& value, int depth) {
    if (depth > seat::busValueDepth || type.empty()) return false;
    if (type == "ay") {
        const auto* const data = value.objectPointer<NSData>();
        return data && bytes(*data);
    }
    if (type == "a{sv}") return dictionary(value.objectPointer<NSDictionary>(), depth);
    if (type[0] == 'a') return array(type.substr(1), value.objectPointer<NSArray>(), depth);
    switch (type[0]) {
    case DBUS_TYPE_VARIANT:
        return variant(value, depth);
    case DBUS_TYPE_STRING:
    case DBUS_TYPE_OBJECT_PATH:
        return text(type[0], value);
    case DBUS_TYPE_UNIX_FD: {
        const auto* const held = value.objectPointer<BusDescriptor>();
        return held && basic(DBUS_TYPE_UNIX_FD, held->descriptor());
    }
    default:
        break;
    }
    const NSNumber* const number = value.number();
    if (!number) return false;
    switch (type[0]) {
    case DBUS_TYPE_BOOLEAN:
        return basic(DBUS_TYPE_BOOLEAN, static_cast<dbus_bool_t>(number->boolValue()));
    case DBUS_TYPE_INT32:
        return basic(DBUS_TYPE_INT32, number->intValue());
    case DBUS_TYPE_UINT32:
        return basic(DBUS_TYPE_UINT32, number->unsignedIntValue());
    case DBUS_TYPE_INT64:
        return basic(DBUS_TYPE_INT64, number->integerValue());
    case DBUS_TYPE_UINT64:
        return basic(DBUS_TYPE_UINT64, number->unsignedLongLongValue());
    case DBUS_TYPE_DOUBLE:
        return basic(DBUS_TYPE_DOUBLE, number->doubleValue());
    default:
        return false;
    }
}

bool Writer::array(const std::string& elementType, const NSArray* values, int depth) {
    DBusMessageIter elements;
    if (!values || !::dbus_message_iter_open_container(&m_at, DBUS_TYPE_ARRAY, elementType.c_str(), &elements))
        return false;
    Writer writer(elements);
    const bool fits =
        std::ranges::all_of(*values, [&](const id& value) { return writer.append(elementType, value, depth + 1); });
    return finish(m_at, elements, fits);
}

bool Writer::bytes(const NSData& data) {
    DBusMessageIter elements;
    if (!::dbus_message_iter_open_container(&m_at, DBUS_TYPE_ARRAY, "y", &elements)) return false;
    const std::uint8_t* const first = data.bytes().data();
    const bool fits = ::dbus_message_iter_append_fixed_array(
        &elements, DBUS_TYPE_BYTE, static_cast<const void*>(&first), static_cast<int>(data.length()));
    return finish(m_at, elements, fits);
}

bool Writer::dictionary(const NSDictionary* values, int depth) {
    DBusMessageIter entries;
    if (!values || !::dbus_message_iter_open_container(&m_at, DBUS_TYPE_ARRAY, "{sv}", &entries)) return false;
    bool fits = true;
    values->enumerate([&](const std::string& key, const id& value) {
        DBusMessageIter entry;
        fits = ::dbus_message_iter_open_container(&entries, DBUS_TYPE_DICT_ENTRY, nullptr, &entry);
        if (!fits) return false;
        Writer writer(entry);
        fits = writer.append("s", key, depth) && writer.append("v", value, depth);
        fits = finish(entries, entry, fits);
        return fits;
    });
    return finish(m_at, entries, fits);
}

bool Writer::variant(const id& value, int depth) {
    const std::string type = naturalType(value);
    DBusMessageIter inner;
    if (type.empty() || !::dbus_message_iter_open_container(&m_at, DBUS_TYPE_VARIANT, type.c_str(), &inner))
        return false;
    Writer writer(inner);
    const bool fits = writer.append(type, value, depth + 1);
    return finish(m_at, inner, fits);
}

} // namespace

bool seat::appendArguments(DBusMessage& message, const std::string& signature, const std::vector<id>& arguments) {
    DBusMessageIter at;
    ::dbus_message_iter_init_append(&message, &at);
    Writer writer(at);
    DBusSignatureIter types;
    if (!signature.empty()) ::dbus_signature_iter_init(&types, signature.c_str());
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (signature.empty() || (i > 0 && !::dbus_signature_iter_next(&types))) return false;
        char* const type = ::dbus_signature_iter_get_signature(&types);
        const bool fits = writer.append(type, arguments[i], 0);
        ::dbus_free(type);
        if (!fits) return false;
    }
    return true;
}
