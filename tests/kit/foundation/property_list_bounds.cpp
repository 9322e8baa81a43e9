#include "tests/kit/foundation/property_list_bytes.h"
#include "tests/support/cpu_time.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace property_list_testing;
using testing::HasSubstr;

std::string repeated(const std::string& text, int times) {
    std::string all;
    for (int i = 0; i < times; ++i) all += text;
    return all;
}

Read nestedXML(int depth, const std::string& inside = "") {
    return readXML(repeated("<array>", depth) + inside + repeated("</array>", depth));
}

Read nestedBinary(int depth, const Bytes& inside) {
    std::vector<Bytes> objects;
    for (int i = 1; i <= depth; ++i) objects.push_back({0xa1, static_cast<std::uint8_t>(i)});
    objects.push_back(inside);
    return readBinary(std::move(objects));
}

// What a hostile file costs.
double millisecondsToRefuse(const Bytes& bytes, const std::string& reason) {
    return testing_support::leastMilliseconds(5, [&] {
        const Read refused = read(bytes);
        EXPECT_FALSE(refused.value);
        EXPECT_THAT(refused.refusal, HasSubstr(reason));
    });
}

constexpr double allowed = testing_support::timesCount ? 5 : 500;
// What is found only while reading costs no more than reading as much.
constexpr double allowedReading = testing_support::timesCount ? 100 : 1000;

TEST(PropertyListBounds, SixtyFourContainersMayNest) {
    EXPECT_TRUE(nestedXML(64, "<true/>").value);
    EXPECT_TRUE(nestedBinary(64, {0x09}).value);
    EXPECT_EQ(nestedXML(65).refusal, "is nested deeper than 64 (line 3)");
    EXPECT_EQ(nestedBinary(64, {0xa0}).refusal, "is nested deeper than 64");
    EXPECT_EQ(nestedBinary(80, {0x09}).refusal, "is nested deeper than 64");
}

TEST(PropertyListBounds, SharedObjectCountsAtTheDepthAtWhichItStands) {
    // A chain of 40 that is first seen at the top, then again below another chain of 40.
    std::vector<Bytes> objects{{0xa2, 1, 41}};
    for (std::uint8_t i = 1; i < 40; ++i) objects.push_back({0xa1, static_cast<std::uint8_t>(i + 1)});
    objects.push_back({0xa0});
    for (std::uint8_t i = 41; i < 80; ++i) objects.push_back({0xa1, static_cast<std::uint8_t>(i + 1)});
    objects.push_back({0xa1, 1});

    EXPECT_EQ(readBinary(objects).refusal, "is nested deeper than 64");
    objects.back() = {0xa1, 30};
    EXPECT_TRUE(readBinary(objects).value);
}

TEST(PropertyListBounds, HundredThousandValuesMayBeHeld) {
    EXPECT_TRUE(readXML("<array>" + repeated("<true/>", 99'999) + "</array>").value);
    EXPECT_THAT(readXML("<array>" + repeated("<true/>", 100'000) + "</array>").refusal,
                HasSubstr("holds more than 100000 values"));
    // Hidden from a quick look by what is no comment.
    EXPECT_THAT(readXML("<?a <!-- ?><array>" + repeated("<true/>", 100'000) + "</array><!-- -->").refusal,
                HasSubstr("holds more than 100000 values"));
    EXPECT_TRUE(readXML("<!-- " + repeated("<true/>", 100'000) + " --><true/>").value);

    Binary list{{{0xaf, 0x12}, {0x09}}, 1, 4};
    Binary::append(list.objects[0], 99'999, 4);
    list.objects[0].resize(list.objects[0].size() + 99'999, 1);
    EXPECT_TRUE(read(list.bytes()).value);
    list.objects.push_back({0xa2, 0, 1});
    list.top = 2;
    EXPECT_EQ(read(list.bytes()).refusal, "holds more than 100000 values");
}

TEST(PropertyListBounds, FourMegabytesMayBeReadAndNoMore) {
    const std::string frame = "<plist><string></string></plist>";
    const auto sized = [&](std::size_t size) {
        return bytesOf("<plist><string>" + std::string(size - frame.size(), 'x') + "</string></plist>");
    };

    EXPECT_TRUE(read(sized(4 << 20)).value);
    EXPECT_EQ(read(sized((4 << 20) + 1)).refusal, "is larger than 4194304 bytes");
    EXPECT_EQ(read({}).refusal, "is empty");
}

TEST(PropertyListBounds, RepeatedContentsAreBounded) {
    // One long text, referred to again and again: 60 KB in the file, gigabytes in memory.
    Binary list{{{0xaf, 0x11}, {0x5f, 0x11}}, 1, 4};
    Binary::append(list.objects[0], 50'000, 2);
    list.objects[0].resize(list.objects[0].size() + 50'000, 1);
    Binary::append(list.objects[1], 10'000, 2);
    list.objects[1].resize(list.objects[1].size() + 10'000, 'x');

    EXPECT_LT(millisecondsToRefuse(list.bytes(), "repeats its contents too often"), allowed);
}

TEST(PropertyListBounds, DoublingReferencesAreRefusedAtOnce) {
    std::vector<Bytes> objects;
    for (std::uint8_t i = 1; i <= 60; ++i) objects.push_back({0xa2, i, i});
    objects.push_back({0x09});

    EXPECT_LT(millisecondsToRefuse(Binary{objects}.bytes(), "holds more than 100000 values"), allowed);
}

TEST(PropertyListBounds, OverlappingContainersAreRefusedAtOnce) {
    // Sixty dictionaries of 98,304 keys, the objects 100 to 159, each beginning six bytes further into the same bytes.
    // The first value of each is the next one; every other byte, read as a reference, is a text.
    constexpr std::size_t dictionaries = 60, first = 100, count = 0x18000;
    const Bytes head{0xdf, 0x12, 0x00, 0x01, 0x80, 0x00};
    Bytes bytes = bytesOf("bplist00");
    std::vector<std::size_t> offsets(256);
    for (std::size_t i = 0; i < dictionaries; ++i) {
        offsets[first + i] = bytes.size();
        bytes.insert(bytes.end(), head.begin(), head.end());
    }
    bytes.resize(offsets[first] + dictionaries * head.size() + 2 * count, 1);
    for (std::size_t i = 0; i + 1 < dictionaries; ++i)
        bytes[offsets[first + i] + head.size() + count] = static_cast<std::uint8_t>(first + i + 1);
    for (std::size_t& offset : offsets)
        if (offset == 0) offset = bytes.size();
    bytes.push_back(0x50);
    const std::size_t table = bytes.size();
    for (const std::size_t offset : offsets) Binary::append(bytes, offset, 4);
    Binary::append(bytes, 0, 6);
    Binary::append(bytes, 0x0401, 2);
    Binary::append(bytes, offsets.size(), 8);
    Binary::append(bytes, first, 8);
    Binary::append(bytes, table, 8);

    EXPECT_LT(millisecondsToRefuse(bytes, "holds more than 100000 values"), allowed);
}

TEST(PropertyListBounds, HugeCutAndDeepFilesAreRefusedAtOnce) {
    const std::string entries = repeated("<key>a long key for nothing</key><string>value</string>", 70'000);
    EXPECT_LT(millisecondsToRefuse(bytesOf("<plist><dict>" + entries), "is cut"), allowed);
    EXPECT_LT(millisecondsToRefuse(bytesOf("<plist><array>" + entries.substr(0, 4'000'000) + "\xff</array></plist>"),
                                   "is not UTF-8"),
              allowed);
    EXPECT_LT(millisecondsToRefuse(bytesOf("<plist>" + repeated("<array>", 90'000) + "</plist>"), "is nested deeper"),
              allowedReading);
    EXPECT_LT(millisecondsToRefuse(
                  bytesOf("<plist><array>" + repeated("<string>value</string>", 100'000) + "</array></plist>"),
                  "holds more than 100000 values"),
              allowedReading);
    EXPECT_LT(millisecondsToRefuse(Bytes(8 << 20, ' '), "is larger than"), allowed);
}

} // namespace
