#pragma once

// Between bus messages and value objects. What comes in has bounds; beyond them, or with a type that has no value
// object, it is refused as a whole.

#include "platform/foundation/NSDictionary.h"
#include "platform/foundation/id.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

struct DBusMessage;
struct DBusMessageIter;

namespace seat {

inline constexpr int busValueDepth = 8;
inline constexpr int busValueCount = 1000;
inline constexpr std::size_t busValueBytes = 64 * 1024;

// An open descriptor on its way into a message; the bus library takes a duplicate.
class BusDescriptor final : public NSObject {
    NS_CLASS(BusDescriptor)
    static std::shared_ptr<BusDescriptor> withDescriptor(int borrowed);
    int descriptor() const { return m_descriptor; }

private:
    int m_descriptor = -1;
};

// All arguments of a message. A variant is the value within; a{sv} a dictionary; bytes are NSData; other arrays, and
// structures, NSArray; object paths and signatures strings. nullopt and `problem` when it is refused.
std::optional<std::vector<id>> readArguments(DBusMessage& message, std::string& problem);

// Appends by signature: s o b i u x t d a{sv} as ah h. False when a value does not fit its place.
bool appendArguments(DBusMessage& message, const std::string& signature, const std::vector<id>& arguments);

} // namespace seat
