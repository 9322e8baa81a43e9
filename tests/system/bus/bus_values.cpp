#include "system/bus/bus_values.h"

#include "platform/foundation/NSArray.h"
#include "platform/foundation/NSData.h"

#include <cstdint>
#include <dbus/dbus.h>
#include <gtest/gtest.h>
#include <limits>

namespace {

// A message that is never sent.
class Message {
public:
    Message() : message(::dbus_message_new_method_call("a.b", "/", "a.b", "C")) {}
    ~Message() { ::dbus_message_unref(message); }
    Message(const Message&) = delete;
    Message& operator=(const Message&) = delete;

    bool append(const std::string& signature, const std::vector<id>& arguments) const {
        return seat::appendArguments(*message, signature, arguments);
    }
    std::optional<std::vector<id>> read() { return seat::readArguments(*message, problem); }

    DBusMessage* message;
    std::string problem;
};

std::shared_ptr<NSDictionary> dictionaryOfEverything() {
    const auto inner = NSDictionary::dictionary();
    inner->setObject_forKey("x", "inner");
    const std::uint8_t address[] = {1, 2, 3, 4, 5, 6};
    const auto values = NSDictionary::dictionary();
    values->setObject_forKey("text", "string");
    values->setObject_forKey(NSNumber::numberWithBool(true), "bool");
    values->setObject_forKey(NSNumber::numberWithInt(-3), "int");
    values->setObject_forKey(NSNumber::numberWithInteger(std::numeric_limits<std::int64_t>::min()), "integer");
    values->setObject_forKey(NSNumber::numberWithUnsignedInt(7), "unsigned");
    values->setObject_forKey(NSNumber::numberWithUnsignedLongLong(std::numeric_limits<std::uint64_t>::max()), "long");
    values->setObject_forKey(NSNumber::numberWithDouble(0.1), "double");
    values->setObject_forKey(NSData::dataWithBytes(address), "data");
    values->setObject_forKey(NSArray::arrayWithObjects({"a", "b"}), "strings");
    values->setObject_forKey(NSArray::arrayWithObjects({"a", NSNumber::numberWithInt(1)}), "mixed");
    values->setObject_forKey(inner, "dictionary");
    return values;
}

TEST(BusValues, ADictionaryComesBackAsItWas) {
    Message message;
    const auto sent = dictionaryOfEverything();
    ASSERT_TRUE(message.append("a{sv}", {sent}));

    const auto received = message.read();

    ASSERT_TRUE(received) << message.problem;
    ASSERT_EQ(1u, received->size());
    EXPECT_TRUE(received->front() == id(sent));
}

TEST(BusValues, ArgumentsThatDoNotFitTheirPlacesAreNotSent) {
    EXPECT_FALSE(Message().append("s", {NSNumber::numberWithInt(1)}));
    EXPECT_FALSE(Message().append("u", {"1"}));
    EXPECT_FALSE(Message().append("o", {"no path"}));
    EXPECT_FALSE(Message().append("s", {std::string("a\0b", 3)}));
    EXPECT_FALSE(Message().append("s", {"\xff"}));
    EXPECT_FALSE(Message().append("a{sv}", {nullptr}));
    EXPECT_FALSE(Message().append("s", {"one", "two"}));
    EXPECT_FALSE(Message().append("", {"one"}));
}

// An array nested in itself, `depth` times.
std::shared_ptr<NSArray> nested(int depth) {
    auto array = NSArray::arrayWithObjects({"innermost"});
    for (int i = 1; i < depth; ++i) array = NSArray::arrayWithObjects({id(array), NSNumber::numberWithInt(1)});
    return array;
}

TEST(BusValues, ValuesThatLieTooDeepAreNotSent) {
    // Each array is in a variant of the one around it.
    EXPECT_TRUE(Message().append("av", {nested(4)}));
    EXPECT_FALSE(Message().append("av", {nested(5)}));
    EXPECT_FALSE(Message().append("av", {nested(40)}));
}

// A string within that many variants.
void appendVariants(DBusMessageIter& at, int depth) {
    DBusMessageIter inner;
    ::dbus_message_iter_open_container(&at, DBUS_TYPE_VARIANT, depth > 1 ? "v" : "s", &inner);
    if (depth > 1) {
        appendVariants(inner, depth - 1);
    } else {
        const char* const text = "innermost";
        ::dbus_message_iter_append_basic(&inner, DBUS_TYPE_STRING, static_cast<const void*>(&text));
    }
    ::dbus_message_iter_close_container(&at, &inner);
}

TEST(BusValues, VariantsAreReadToADepthOfEight) {
    for (const int depth : {1, 8, 9, 30}) {
        Message message;
        DBusMessageIter at;
        ::dbus_message_iter_init_append(message.message, &at);
        appendVariants(at, depth);

        const auto received = message.read();

        EXPECT_EQ(depth <= 8, received.has_value()) << depth;
        if (received) {
            EXPECT_TRUE(received->front() == id("innermost"));
        }
    }
}

TEST(BusValues, TooManyValuesAreRefused) {
    Message message;
    ASSERT_TRUE(message.append("av", {NSArray::arrayWithObjects(std::vector<id>(1001, id("x")))}));

    EXPECT_FALSE(message.read());
    EXPECT_EQ("it has too many values", message.problem);
}

TEST(BusValues, TooLongOnesAreRefused) {
    Message text;
    ASSERT_TRUE(text.append("s", {std::string(65 * 1024, 'x')}));
    EXPECT_FALSE(text.read());

    Message bytes;
    ASSERT_TRUE(bytes.append("ay", {NSData::dataWithVector(std::vector<std::uint8_t>(65 * 1024))}));
    EXPECT_FALSE(bytes.read());
}

TEST(BusValues, AStructureIsReadAsTheListOfItsMembers) {
    Message structure;
    DBusMessageIter at;
    DBusMessageIter inner;
    const dbus_int32_t number = 7;
    ::dbus_message_iter_init_append(structure.message, &at);
    ::dbus_message_iter_open_container(&at, DBUS_TYPE_STRUCT, nullptr, &inner);
    ::dbus_message_iter_append_basic(&inner, DBUS_TYPE_INT32, &number);
    ::dbus_message_iter_close_container(&at, &inner);

    const auto arguments = structure.read();

    ASSERT_TRUE(arguments);
    ASSERT_EQ(arguments->size(), 1u);
    const auto* const members = arguments->front().objectPointer<NSArray>();
    ASSERT_TRUE(members);
    ASSERT_EQ(members->count(), 1u);
    EXPECT_EQ(members->objectAtIndex(0).integerValue(), 7);
}

TEST(BusValues, DescriptorsAndForeignKeysAreRefused) {
    Message descriptor;
    ASSERT_TRUE(descriptor.append("h", {seat::BusDescriptor::withDescriptor(0)}));
    EXPECT_FALSE(descriptor.read());
    DBusMessageIter at;
    DBusMessageIter inner;
    const dbus_int32_t number = 1;

    Message keys;
    DBusMessageIter entries;
    ::dbus_message_iter_init_append(keys.message, &at);
    ::dbus_message_iter_open_container(&at, DBUS_TYPE_ARRAY, "{ii}", &entries);
    ::dbus_message_iter_open_container(&entries, DBUS_TYPE_DICT_ENTRY, nullptr, &inner);
    ::dbus_message_iter_append_basic(&inner, DBUS_TYPE_INT32, &number);
    ::dbus_message_iter_append_basic(&inner, DBUS_TYPE_INT32, &number);
    ::dbus_message_iter_close_container(&entries, &inner);
    ::dbus_message_iter_close_container(&at, &entries);
    EXPECT_FALSE(keys.read());
}

} // namespace
