#include "platform/foundation/NSArray.h"
#include "platform/foundation/NSCoder.h"
#include "platform/foundation/NSDictionary.h"
#include "platform/foundation/NSNumber.h"
#include "platform/foundation/id.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;

id number(int value) { return NSNumber::numberWithInt(value); }

std::shared_ptr<NSMutableDictionary> dictionaryOf(std::initializer_list<std::pair<const char*, int>> entries) {
    auto dictionary = NSMutableDictionary::dictionary();
    for (const auto& [key, value] : entries) dictionary->setObject_forKey(number(value), key);
    return dictionary;
}

TEST(Dictionaries, EnumerateKeysInTheOrderInWhichTheyCameIn) {
    const auto dictionary = dictionaryOf({{"zebra", 1}, {"ant", 2}, {"mole", 3}});

    dictionary->setObject_forKey(number(9), "ant");
    dictionary->removeObjectForKey("zebra");
    dictionary->setObject_forKey(number(4), "zebra");

    EXPECT_THAT(dictionary->allKeys(), ElementsAre("ant", "mole", "zebra"));
    EXPECT_EQ(dictionary->objectForKey("ant"), number(9));
    EXPECT_EQ(dictionary->count(), 3u);
}

TEST(Dictionaries, AbsentKeyGivesNil) {
    const auto dictionary = dictionaryOf({{"a", 1}});

    EXPECT_FALSE(dictionary->objectForKey("b"));
    EXPECT_FALSE(dictionary->objectForKey(""));
    EXPECT_FALSE(NSMutableDictionary::dictionary()->objectForKey("a"));
    dictionary->removeObjectForKey("b");
    EXPECT_EQ(dictionary->count(), 1u);
}

TEST(Dictionaries, NilObjectRemovesItsKey) {
    const auto dictionary = dictionaryOf({{"a", 1}, {"b", 2}});

    dictionary->setObject_forKey(nullptr, "a");
    dictionary->setObject_forKey(nullptr, "c");

    EXPECT_THAT(dictionary->allKeys(), ElementsAre("b"));
}

TEST(Dictionaries, EmptyTextIsAKeyLikeAnyOther) {
    const auto dictionary = dictionaryOf({{"", 1}});

    EXPECT_EQ(dictionary->objectForKey(""), number(1));
}

TEST(Dictionaries, CopyIsShallowAndApart) {
    const auto inner = NSArray::array();
    const auto original = dictionaryOf({{"gone", 0}, {"b", 2}, {"a", 1}});
    original->setObject_forKey(inner, "inner");
    original->removeObjectForKey("gone");

    const auto copy = original->mutableCopy();
    copy->setObject_forKey(number(5), "b");

    EXPECT_THAT(copy->allKeys(), ElementsAre("b", "a", "inner"));
    EXPECT_EQ(original->objectForKey("b"), number(2));
    EXPECT_EQ(copy->objectForKey("inner").object<NSArray>(), inner);
}

TEST(Dictionaries, AreEqualWhateverTheirOrder) {
    EXPECT_TRUE(dictionaryOf({{"a", 1}, {"b", 2}})->isEqual(*dictionaryOf({{"b", 2}, {"a", 1}})));
    EXPECT_FALSE(dictionaryOf({{"a", 1}})->isEqual(*dictionaryOf({{"a", 2}})));
    EXPECT_FALSE(dictionaryOf({{"a", 1}})->isEqual(*dictionaryOf({{"b", 1}})));
    EXPECT_FALSE(dictionaryOf({{"a", 1}})->isEqual(*dictionaryOf({{"a", 1}, {"b", 2}})));
    EXPECT_FALSE(dictionaryOf({})->isEqual(*NSArray::array()));
}

TEST(Dictionaries, KeyMayBeAViewOfTheDictionarysOwn) {
    const auto dictionary = dictionaryOf({{"some key that is too long to be stored in place", 1}});
    for (int i = 0; i < 100; ++i) {
        dictionary->enumerate([&](const std::string& key, const id&) {
            // A key made from an own one, just as the dictionary may have to grow.
            dictionary->setObject_forKey(number(i), std::string_view(key).substr(0, key.size() - 1));
            return false;
        });
        dictionary->enumerate([&](const std::string& key, const id&) {
            dictionary->removeObjectForKey(key);
            return false;
        });
    }
    EXPECT_LE(dictionary->count(), 1u);
}

TEST(Dictionaries, VisitorMayRemoveWhatItSees) {
    const auto dictionary = dictionaryOf({{"a", 1}, {"b", 2}, {"c", 3}});

    dictionary->enumerate([&](const std::string& key, const id& object) {
        if (object != number(2)) dictionary->removeObjectForKey(key);
        return true;
    });

    EXPECT_THAT(dictionary->allKeys(), ElementsAre("b"));
}

TEST(Dictionaries, ManyKeysComeAndGoAndAreAllFound) {
    const auto dictionary = NSMutableDictionary::dictionary();
    for (int round = 0; round < 3; ++round) {
        for (int i = 0; i < 20'000; ++i) dictionary->setObject_forKey(number(i + round), std::to_string(i));
        for (int i = 0; i < 20'000; i += 2) dictionary->removeObjectForKey(std::to_string(i));
    }

    EXPECT_EQ(dictionary->count(), 10'000u);
    for (int i = 0; i < 20'000; ++i)
        ASSERT_EQ(dictionary->objectForKey(std::to_string(i)), i % 2 ? number(i + 2) : id()) << i;
}

TEST(Arrays, GiveNilBeyondTheirEnd) {
    const auto array = NSArray::arrayWithObjects({number(1), "two"});
    array->addObject(nullptr);

    EXPECT_EQ(array->count(), 3u);
    EXPECT_EQ(array->objectAtIndex(1), id("two"));
    EXPECT_FALSE(array->objectAtIndex(2));
    EXPECT_FALSE(array->objectAtIndex(3));
    EXPECT_FALSE(array->objectAtIndex(static_cast<std::size_t>(-1)));
}

TEST(Arrays, AreEqualElementByElement) {
    EXPECT_TRUE(NSArray::arrayWithObjects({number(1)})->isEqual(*NSArray::arrayWithObjects({number(1)})));
    EXPECT_FALSE(NSArray::arrayWithObjects({number(1)})->isEqual(*NSArray::arrayWithObjects({number(1), number(2)})));
    EXPECT_FALSE(NSArray::array()->isEqual(*dictionaryOf({})));
}

TEST(Coders, DecodeWhatTheDictionaryHolds) {
    const auto coder = NSCoder::coderWithDictionary(dictionaryOf({{"alpha", 1}}));

    EXPECT_TRUE(coder->containsValueForKey("alpha"));
    EXPECT_EQ(coder->decodeObjectForKey("alpha"), number(1));
    EXPECT_FALSE(coder->containsValueForKey("hidden"));
    EXPECT_FALSE(NSCoder::coderWithDictionary(nullptr)->decodeObjectForKey("alpha"));
}

} // namespace
