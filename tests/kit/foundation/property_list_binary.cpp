#include "tests/kit/foundation/property_list_bytes.h"

#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace property_list_testing;
using testing::HasSubstr;

void expectRefused(const Read& read, const std::string& reason) {
    EXPECT_FALSE(read.value);
    EXPECT_THAT(read.refusal, HasSubstr(reason));
}

const Bytes yes{0x09}, no{0x08}, text{0x51, 'a'};

TEST(BinaryPropertyList, EveryTypeIsRead) {
    EXPECT_EQ(readBinary({yes}).value, id(NSNumber::numberWithBool(true)));
    EXPECT_EQ(readBinary({no}).value, id(NSNumber::numberWithBool(false)));
    EXPECT_EQ(readBinary({{0x53, 'a', 'b', 'c'}}).value, id("abc"));
    EXPECT_EQ(readBinary({{0x50}}).value, id(""));
    EXPECT_EQ(readBinary({{0x63, 0, 'a', 0xd8, 0x34, 0xdd, 0x1e}}).value, id("a𝄞"));
    EXPECT_EQ(readBinary({{0x42, 1, 2}}).value, data("\1\2"));
    EXPECT_EQ(readBinary({{0x5f, 0x10, 1, 'a'}}).value, id("a"));
    EXPECT_EQ(readBinary({{0x5f, 0x13, 0, 0, 0, 0, 0, 0, 0, 1, 'a'}}).value, id("a"));
    EXPECT_EQ(readBinary({{0x33, 0xbf, 0xf0, 0, 0, 0, 0, 0, 0}}).value, id(NSDate{-1}));
    EXPECT_EQ(readBinary({{0xa2, 1, 2}, yes, text}).value, array({NSNumber::numberWithBool(true), "a"}));
    EXPECT_EQ(readBinary({{0xd1, 1, 2}, text, no}).value, dictionary({{"a", NSNumber::numberWithBool(false)}}));
}

TEST(BinaryPropertyList, IntegersOfTheWholeRange) {
    const Bytes ones(16, 0xff);
    const auto sixteen = [](std::uint64_t high, std::uint64_t low) {
        Bytes object{0x14};
        Binary::append(object, high, 8);
        Binary::append(object, low, 8);
        return readBinary({object});
    };

    EXPECT_EQ(readBinary({{0x10, 0xff}}).value, integer(255));
    EXPECT_EQ(readBinary({{0x11, 0xff, 0xff}}).value, integer(65535));
    EXPECT_EQ(readBinary({{0x12, 0xff, 0xff, 0xff, 0xff}}).value, integer(0xffffffff));
    EXPECT_EQ(readBinary({{0x13, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff}}).value, integer(-1));
    EXPECT_EQ(readBinary({{0x13, 0x80, 0, 0, 0, 0, 0, 0, 0}}).value, integer(INT64_MIN));
    EXPECT_EQ(sixteen(0, UINT64_MAX).value, id(NSNumber::numberWithUnsignedLongLong(UINT64_MAX)));
    EXPECT_EQ(sixteen(0, 5).value, integer(5));
    EXPECT_EQ(sixteen(UINT64_MAX, UINT64_MAX - 1).value, integer(-2));
    EXPECT_EQ(sixteen(UINT64_MAX, 1ull << 63).value, integer(INT64_MIN));
    expectRefused(sixteen(1, 0), "beyond 64 bits");
    expectRefused(sixteen(UINT64_MAX, 5), "beyond 64 bits");
    expectRefused(readBinary({{0x15, 0}}), "unknown size");
}

TEST(BinaryPropertyList, RealsKeepTheirSizeAndBits) {
    const id single = readBinary({{0x22, 0x3d, 0xcc, 0xcc, 0xcd}}).value;
    const id twice = readBinary({{0x23, 0x80, 0, 0, 0, 0, 0, 0, 0}}).value;

    ASSERT_TRUE(single && twice);
    EXPECT_EQ(single.number()->type(), NSNumber::Type::Float);
    EXPECT_EQ(single.floatValue(), 0.1f);
    EXPECT_EQ(twice.number()->type(), NSNumber::Type::Double);
    EXPECT_TRUE(std::signbit(twice.doubleValue()));
    expectRefused(readBinary({{0x21, 0, 0}}), "unknown size");
    expectRefused(readBinary({{0x30, 0}}), "unknown size");
}

TEST(BinaryPropertyList, ReferencesAndOffsetsOfEverySize) {
    for (std::uint8_t size = 1; size <= 8; ++size) {
        Binary list{{{0xa1}, yes}, size, size};
        Binary::append(list.objects[0], 1, size);
        EXPECT_EQ(read(list.bytes()).value, array({NSNumber::numberWithBool(true)})) << int(size);
    }
}

TEST(BinaryPropertyList, OutermostValueMayStandAnywhere) {
    EXPECT_EQ(read(Binary{{text, yes, {0xa2, 1, 0}}, 1, 1, 2}.bytes()).value,
              array({NSNumber::numberWithBool(true), "a"}));
}

TEST(BinaryPropertyList, KeysKeepTheirOrder) {
    const Read read = readBinary({{0xd3, 1, 2, 3, 4, 4, 4}, {0x51, 'z'}, {0x51, 'a'}, {0x61, 0x20, 0xac}, yes});

    ASSERT_TRUE(read.value);
    EXPECT_THAT(read.value.object<NSMutableDictionary>()->allKeys(), testing::ElementsAre("z", "a", "€"));
}

TEST(BinaryPropertyList, SharedObjectsComeApart) {
    const Read read = readBinary({{0xa2, 1, 1}, {0xa1, 2}, text});

    ASSERT_EQ(read.value, array({array({"a"}), array({"a"})}));
    const auto list = read.value.object<NSArray>();
    list->objectAtIndex(0).object<NSArray>()->addObject("b");
    EXPECT_EQ(list->objectAtIndex(1), array({"a"}));
}

TEST(BinaryPropertyList, ObjectThatRefersToItselfIsRefused) {
    expectRefused(readBinary({{0xa1, 0}}), "refers to itself");
    expectRefused(readBinary({{0xa1, 1}, {0xa1, 2}, {0xd1, 3, 1}, text}), "refers to itself");
    expectRefused(readBinary({{0xd1, 0, 1}, yes}), "refers to itself");
}

TEST(BinaryPropertyList, WhatIsNoValueIsRefused) {
    expectRefused(readBinary({{0x80, 5}}), "archiver's reference");
    expectRefused(readBinary({{0x00}}), "unknown type");
    expectRefused(readBinary({{0x0f}}), "unknown type");
    expectRefused(readBinary({{0x70}}), "unknown type");
    expectRefused(readBinary({{0xc1, 1}, yes}), "unknown type");
    expectRefused(readBinary({{0xf0}}), "unknown type");
    expectRefused(readBinary({{0xd1, 1, 1}, yes}), "has a key that is no text");
}

TEST(BinaryPropertyList, OfAKeyThatComesTwiceTheLastValueCounts) {
    for (const id& value : {readBinary({{0xd2, 1, 1, 3, 2}, text, yes, no}).value,
                            readBinary({{0xd2, 1, 2, 4, 3}, text, {0x61, 0, 'a'}, yes, no}).value}) {
        const auto dictionary = value.object<NSDictionary>();
        ASSERT_TRUE(dictionary);
        EXPECT_EQ(dictionary->count(), 1u);
        EXPECT_TRUE(dictionary->objectForKey("a").boolValue());
    }
}

TEST(BinaryPropertyList, BrokenTextsAreRefused) {
    expectRefused(readBinary({{0x51, 0x80}}), "no ASCII");
    expectRefused(readBinary({{0x61, 0xd8, 0x34}}), "half a surrogate pair");
    expectRefused(readBinary({{0x61, 0xdd, 0x1e}}), "half a surrogate pair");
    expectRefused(readBinary({{0x62, 0xd8, 0x34, 0, 'a'}}), "half a surrogate pair");
    expectRefused(readBinary({{0x62, 0xdd, 0x1e, 0xd8, 0x34}}), "half a surrogate pair");
    expectRefused(readBinary({{0x62, 0xd8, 0x34, 0xd8, 0x34}}), "half a surrogate pair");
    EXPECT_EQ(readBinary({{0x61, 0, 0}}).value, id(std::string(1, '\0')));
}

TEST(BinaryPropertyList, WhatPointsOutsideIsRefused) {
    const Bytes sound = Binary{{{0xa1, 1}, yes}}.bytes();
    ASSERT_TRUE(read(sound).value);
    const auto changed = [&](std::size_t fromEnd, std::uint8_t value) {
        Bytes bytes = sound;
        bytes[bytes.size() - fromEnd] = value;
        return read(bytes);
    };

    expectRefused(readBinary({{0xa1, 7}}), "refers to an object that it does not hold");
    expectRefused(readBinary({{0x5e, 'a'}}), "runs over its end");
    expectRefused(readBinary({{0x5f, 0x13, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 'a'}}), "runs over its end");
    expectRefused(readBinary({{0x5f, 0x51, 'a'}}), "unreadable length");
    expectRefused(readBinary({{0x5f}}), "unreadable length");
    expectRefused(readBinary({{0x5f, 0x13, 0}}), "runs over its end");
    expectRefused(readBinary({{0x13, 0}}), "runs over its end");
    expectRefused(changed(33, 0xff), "outside of it");      // an offset
    expectRefused(changed(33, 0x07), "outside of it");      // an offset into the header
    expectRefused(changed(26, 0), "damaged at its end");    // the size of offsets
    expectRefused(changed(25, 9), "damaged at its end");    // the size of references
    expectRefused(changed(24, 0x80), "damaged at its end"); // the number of objects
    expectRefused(changed(17, 0), "damaged at its end");    // no objects
    expectRefused(changed(9, 2), "damaged at its end");     // the outermost
    expectRefused(changed(1, 0xff), "damaged at its end");  // where the offsets are
    expectRefused(changed(8, 0xff), "damaged at its end");  // far away
    expectRefused(changed(sound.size() - 6, '1'), "unknown version");
}

TEST(BinaryPropertyList, CutFileIsRefusedAtEveryLength) {
    std::string refusal;
    const auto whole = seat::writeBinaryPropertyList(
        dictionary({{"a", array({integer(1), data("abc"), "ü"})}, {"b", real(0.5)}}), refusal);
    ASSERT_NE(whole, nullptr);

    for (std::size_t length = 0; length < whole->length(); ++length) {
        const auto part = whole->bytes().first(length);
        const Read cut = read({part.begin(), part.end()});
        EXPECT_FALSE(cut.value) << length;
        EXPECT_NE(cut.refusal, "") << length;
    }
}

TEST(BinaryPropertyList, FlippedBitIsReadOrRefusedButNeverFatal) {
    std::string refusal;
    const auto whole = seat::writeBinaryPropertyList(
        dictionary({{"a", array({integer(1), data("abc"), "ü", dictionary({{"c", NSDate{1}}})})}, {"b", real(0.5)}}),
        refusal);
    ASSERT_NE(whole, nullptr);

    int refused = 0;
    for (std::size_t bit = 0; bit < 8 * whole->length(); ++bit) {
        Bytes bytes(whole->bytes().begin(), whole->bytes().end());
        bytes[bit / 8] ^= static_cast<std::uint8_t>(1u << bit % 8);
        const Read flipped = read(bytes);
        EXPECT_NE(bool(flipped.value), !flipped.refusal.empty());
        refused += !flipped.value;
    }
    EXPECT_GT(refused, 100);
}

} // namespace
