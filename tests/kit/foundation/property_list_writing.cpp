#include "platform/foundation/NSScanner.h"
#include "tests/kit/foundation/property_list_bytes.h"
#include "tests/support/cpu_time.h"

#include <bit>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>

namespace {

using namespace property_list_testing;
using testing::HasSubstr;

Bytes written(const id& value) {
    std::string refusal;
    const auto data = seat::writeBinaryPropertyList(value, refusal);
    EXPECT_EQ(refusal, "");
    return data ? Bytes(data->bytes().begin(), data->bytes().end()) : Bytes();
}

// The one object of a list that holds nothing else: what stands between the header and the offset table.
Bytes object(const id& value) {
    const Bytes all = written(value);
    if (all.size() < 41) return {};
    return {all.begin() + 8, all.end() - 33};
}

std::string refusalOf(const id& value) {
    std::string refusal;
    EXPECT_EQ(seat::writeBinaryPropertyList(value, refusal), nullptr);
    return refusal;
}

id roundTrip(const id& value) { return read(written(value)).value; }

TEST(PropertyListWriting, IntegersTakeTheFewestBytes) {
    EXPECT_EQ(object(integer(0)), (Bytes{0x10, 0}));
    EXPECT_EQ(object(integer(255)), (Bytes{0x10, 0xff}));
    EXPECT_EQ(object(integer(256)), (Bytes{0x11, 1, 0}));
    EXPECT_EQ(object(integer(65536)), (Bytes{0x12, 0, 1, 0, 0}));
    EXPECT_EQ(object(integer(1ll << 32)), (Bytes{0x13, 0, 0, 0, 1, 0, 0, 0, 0}));
    EXPECT_EQ(object(integer(-1)), (Bytes{0x13, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff}));
    EXPECT_EQ(object(NSNumber::numberWithUnsignedInt(0xffffffff)), (Bytes{0x12, 0xff, 0xff, 0xff, 0xff}));
    EXPECT_EQ(object(NSNumber::numberWithUnsignedLongLong(UINT64_MAX)),
              (Bytes{0x14, 0, 0, 0, 0, 0, 0, 0, 0, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff}));
    EXPECT_EQ(object(NSNumber::numberWithUnsignedLongLong(5)), (Bytes{0x10, 5}));
}

TEST(PropertyListWriting, ADateThatIsNoMomentIsNeitherWrittenNorRead) {
    for (const double no : {std::nan(""), HUGE_VAL, -HUGE_VAL}) {
        EXPECT_EQ(refusalOf(NSDate{no}), "holds a date that is no moment");
        EXPECT_EQ(refusalOf(array({integer(1), NSDate{no}})), "holds a date that is no moment");

        Binary list{.objects = {Bytes{0x33}}};
        Binary::append(list.objects[0], std::bit_cast<std::uint64_t>(no), 8);
        EXPECT_EQ(read(list.bytes()).refusal, "has a date that is no moment");
    }
    EXPECT_EQ(roundTrip(NSDate{1e300}), id(NSDate{1e300}));
}

TEST(PropertyListWriting, OtherScalarsHaveTheirOwnForms) {
    EXPECT_EQ(object(NSNumber::numberWithBool(true)), (Bytes{0x09}));
    EXPECT_EQ(object(NSNumber::numberWithBool(false)), (Bytes{0x08}));
    EXPECT_EQ(object(NSNumber::numberWithFloat(0.1f)), (Bytes{0x22, 0x3d, 0xcc, 0xcc, 0xcd}));
    EXPECT_EQ(object(real(-0.0)), (Bytes{0x23, 0x80, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(object(NSDate{-1}), (Bytes{0x33, 0xbf, 0xf0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(object("abc"), (Bytes{0x53, 'a', 'b', 'c'}));
    EXPECT_EQ(object("a𝄞"), (Bytes{0x63, 0, 'a', 0xd8, 0x34, 0xdd, 0x1e}));
    EXPECT_EQ(object(data("ab")), (Bytes{0x42, 'a', 'b'}));
    EXPECT_EQ(object(std::string(15, 'x')).at(0), 0x5f);
    EXPECT_EQ(object(std::string(15, 'x')).at(2), 15);
}

TEST(PropertyListWriting, DoublesComeBackBitForBit) {
    std::mt19937_64 random(1);
    for (int i = 0; i < 2000; ++i) {
        const auto bits = random();
        const id back = roundTrip(real(std::bit_cast<double>(bits)));
        ASSERT_TRUE(back);
        EXPECT_EQ(std::bit_cast<std::uint64_t>(back.number()->doubleValue()), bits);
    }
}

TEST(PropertyListWriting, IntegersComeBackExactly) {
    for (int shift = 0; shift < 64; ++shift)
        for (const int nudge : {-1, 0, 1}) {
            const std::uint64_t bits = (std::uint64_t{1} << shift) + nudge;
            EXPECT_EQ(roundTrip(NSNumber::numberWithUnsignedLongLong(bits)).number()->unsignedLongLongValue(), bits);
            EXPECT_EQ(roundTrip(integer(static_cast<std::int64_t>(bits))), integer(static_cast<std::int64_t>(bits)));
        }
}

TEST(PropertyListWriting, NestedValuesComeBackInTheirOrder) {
    const id value = dictionary({{"z", array({"", array({}), NSMutableDictionary::dictionary(), "€"})},
                                 {"ä", dictionary({{"", data("")}, {"deep", array({dictionary({{"k", NSDate{5}}})})}})},
                                 {"a", NSNumber::numberWithBool(true)}});

    const id back = roundTrip(value);

    EXPECT_EQ(back, value);
    EXPECT_EQ(back.object<NSMutableDictionary>()->allKeys(), value.object<NSMutableDictionary>()->allKeys());
}

TEST(PropertyListWriting, RemovedKeysAreNotWritten) {
    const id value = dictionary({{"a", integer(1)}, {"b", integer(2)}});
    value.object<NSMutableDictionary>()->removeObjectForKey("a");

    EXPECT_EQ(roundTrip(value), dictionary({{"b", integer(2)}}));
}

TEST(PropertyListWriting, ManyValuesNeedWiderReferences) {
    for (const int count : {14, 15, 254, 255, 256, 65'000, 65'534, 65'535, 65'536, 99'999}) {
        std::vector<id> objects;
        for (int i = 0; i < count; ++i) objects.push_back(integer(i));
        EXPECT_EQ(roundTrip(array(objects)), array(objects)) << count;
    }
}

TEST(PropertyListWriting, ValueThatRefersToItselfIsRefused) {
    const auto list = NSArray::array();
    list->addObject(list);
    EXPECT_THAT(refusalOf(list), HasSubstr("refers to itself"));

    const auto outer = NSMutableDictionary::dictionary();
    outer->setObject_forKey(array({outer, outer, outer}), "a");
    EXPECT_THAT(refusalOf(outer), HasSubstr("refers to itself"));

    // Break the circles, or they would never be released.
    outer->removeObjectForKey("a");
    list->begin()->object<NSArray>(); // still whole after the refusal
    const_cast<id&>(list->objectAtIndex(0)) = nullptr;
}

TEST(PropertyListWriting, WhatIsNoPropertyListIsRefused) {
    EXPECT_EQ(refusalOf(nullptr), "is nil");
    EXPECT_EQ(refusalOf(NSObject::alloc()), "holds an object that is no property-list value");
    EXPECT_EQ(refusalOf(array({NSScanner::scannerWithString("")})), "holds an object that is no property-list value");
    EXPECT_EQ(refusalOf(array({nullptr})), "holds nil");
    EXPECT_EQ(refusalOf(array({NSArray::classObject()})), "holds a class");
    EXPECT_EQ(refusalOf("\xc3"), "holds a text that is not UTF-8");
    EXPECT_EQ(refusalOf(dictionary({{"\xff", integer(1)}})), "holds a text that is not UTF-8");
}

TEST(PropertyListWriting, NothingIsWrittenThatCouldNotBeReadBack) {
    id deep = array({integer(1)});
    for (int i = 1; i < 64; ++i) deep = array({deep});
    EXPECT_EQ(roundTrip(deep), deep);
    EXPECT_THAT(refusalOf(array({deep})), HasSubstr("is nested deeper than 64"));

    EXPECT_THAT(refusalOf(array(std::vector<id>(100'000, integer(1)))), HasSubstr("holds more than 100000 values"));
    EXPECT_THAT(refusalOf(std::string(4 << 20, 'x')), HasSubstr("is larger than"));
    EXPECT_TRUE(roundTrip(std::string((4 << 20) - 100, 'x')));
}

TEST(PropertyListWriting, HundredThousandValuesAreWrittenQuickly) {
    const auto keymap = NSMutableDictionary::dictionary();
    for (int i = 0; i < 99'999; ++i) keymap->setObject_forKey(integer(i % 21 + 1), std::to_string(i));

    const double least = testing_support::leastMilliseconds(3, [&] { EXPECT_FALSE(written(keymap).empty()); });

    EXPECT_LT(least, testing_support::timesCount ? 50 : 5000);
}

} // namespace
