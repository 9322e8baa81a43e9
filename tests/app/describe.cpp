#include "app/tour/describe.h"

#include "platform/foundation/NSArray.h"
#include "platform/foundation/NSData.h"

#include <gtest/gtest.h>

namespace {

using app::describe;

std::string changes(const NSDictionary* before, const NSDictionary* after) {
    std::string text;
    for (const auto& change : app::describeChanges(before, after)) text += change + '\n';
    return text;
}

TEST(Describe, SaysValuesInAFewWords) {
    EXPECT_EQ("3", describe(NSNumber::numberWithInteger(3)));
    EXPECT_EQ("true", describe(NSNumber::numberWithBool(true)));
    EXPECT_EQ("0.5", describe(NSNumber::numberWithDouble(0.5)));
    EXPECT_EQ("\"004efd\"", describe("004efd"));
    EXPECT_EQ("2 elements", describe(NSArray::arrayWithObjects({id("a"), id("b")})));
    EXPECT_EQ("nothing", describe(nullptr));
}

TEST(Describe, NeverShowsBytes) {
    const std::vector<std::uint8_t> address{1, 2, 3, 4, 5, 6};
    EXPECT_EQ("6 bytes", describe(NSData::dataWithBytes(address)));
}

TEST(Describe, NamesWhatWasAddedChangedAndRemoved) {
    const auto before = NSDictionary::dictionary();
    before->setObject_forKey("kept", "same");
    before->setObject_forKey("old", "changed");
    before->setObject_forKey("gone", "removed");
    const auto after = NSDictionary::dictionary();
    after->setObject_forKey("kept", "same");
    after->setObject_forKey("new", "changed");
    after->setObject_forKey("fresh", "added");

    EXPECT_EQ("changed = \"new\"\nremoved removed\nadded = \"fresh\"\n", changes(before.get(), after.get()));
    EXPECT_EQ("", changes(after.get(), after.get()));
}

TEST(Describe, LooksIntoDictionariesInside) {
    const auto outer = [](const char* value) {
        const auto inner = NSDictionary::dictionary();
        inner->setObject_forKey(value, "26");
        const auto result = NSDictionary::dictionary();
        result->setObject_forKey(inner, "keys");
        return result;
    };

    EXPECT_EQ("keys.26 = \"b\"\n", changes(outer("a").get(), outer("b").get()));
    EXPECT_EQ("keys = 1 entries\n", changes(nullptr, outer("a").get()));
    EXPECT_EQ("keys removed\n", changes(outer("a").get(), nullptr));
}

} // namespace
