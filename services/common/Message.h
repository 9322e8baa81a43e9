#pragma once

#include <memory>
#include <string>
#include <systemd/sd-bus.h>

namespace services {

struct MessageDeleter {
    void operator()(::sd_bus_message* message) const { ::sd_bus_message_unref(message); }
};
// One reference to a bus message; nullptr where it could not be made.
using Message = std::unique_ptr<::sd_bus_message, MessageDeleter>;

struct SlotDeleter {
    void operator()(::sd_bus_slot* slot) const { ::sd_bus_slot_unref(slot); }
};
// A registration at a connection, which ends with it.
using Slot = std::unique_ptr<::sd_bus_slot, SlotDeleter>;

// Calls `entry(name)` for each entry of the dictionary (its keys strings, its values of the signature `value`) at which
// the message stands. The function reads the value, or says false to have it skipped. False when the message holds
// something else there.
template <typename Entry> bool readDictionary(::sd_bus_message* message, const char* value, Entry entry) {
    const std::string inside = std::string("s") + value;
    if (::sd_bus_message_enter_container(message, 'a', ("{" + inside + "}").c_str()) < 0) return false;
    while (::sd_bus_message_enter_container(message, 'e', inside.c_str()) > 0) {
        const char* name = nullptr;
        if (::sd_bus_message_read(message, "s", &name) <= 0) return false;
        if (!entry(name) && ::sd_bus_message_skip(message, value) < 0) return false;
        if (::sd_bus_message_exit_container(message) < 0) return false;
    }
    return ::sd_bus_message_exit_container(message) >= 0;
}

// Reads a variant that holds one value of the basic type `type` ("b", "u", "s" ...) into `value`, of the C type that
// goes with it (int for "b"). False, and the variant still to be read, when it holds something else.
template <typename Value> bool readVariant(::sd_bus_message* message, const char* type, Value& value) {
    if (::sd_bus_message_enter_container(message, 'v', type) <= 0) return false;
    const bool isRead = ::sd_bus_message_read_basic(message, type[0], static_cast<void*>(&value)) > 0;
    return ::sd_bus_message_exit_container(message) >= 0 && isRead;
}

} // namespace services
