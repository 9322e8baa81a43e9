#include "tests/system/preferences/fixture.h"

#include "platform/foundation/NSArray.h"
#include "platform/foundation/NSData.h"
#include "platform/foundation/NSPropertyListSerialization.h"

#include <chrono>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <thread>

using namespace seat;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

using Store = PreferencesTest;

TEST_F(Store, MissingFileReadsAsAllKeysAbsent) {
    EXPECT_FALSE(preferenceValue(domain(), "controller_type"));
    EXPECT_THAT(log(), IsEmpty());
    EXPECT_THAT(names(), IsEmpty());
}

TEST_F(Store, ValueThatWasSetIsReadBackWithItsType) {
    EXPECT_TRUE(set("integer", NSNumber::numberWithInteger(6)));
    EXPECT_TRUE(set("boolean", NSNumber::numberWithBool(true)));
    EXPECT_TRUE(set("string", "004EFD"));

    EXPECT_EQ(preferenceValue(domain(), "integer").integerValue(), 6);
    ASSERT_TRUE(preferenceValue(domain(), "boolean").number());
    EXPECT_EQ(preferenceValue(domain(), "boolean").number()->type(), NSNumber::Type::Bool);
    EXPECT_EQ(preferenceValue(domain(), "string"), id("004EFD"));
}

TEST_F(Store, NilValueRemovesItsKeyAlone) {
    set("a", "1");
    set("b", "2");

    EXPECT_TRUE(set("a", {}));

    EXPECT_FALSE(preferenceValue(domain(), "a"));
    EXPECT_EQ(preferenceValue(domain(), "b"), id("2"));
}

TEST_F(Store, FileIsReadAfreshAtEachAccess) {
    set("ours", "1");

    auto theirs = stored();
    theirs->setObject_forKey("2", "theirs");
    NSPropertyListSerialization::dataWithPropertyList_format_options_error(id(theirs), 200, 0, nullptr)
        ->writeToFile_options_error("/var/mobile/Library/Preferences/" + domain() + ".plist", NSDataWritingAtomic,
                                    nullptr);

    EXPECT_EQ(preferenceValue(domain(), "theirs"), id("2"));
    EXPECT_TRUE(set("ours", "3"));
    EXPECT_EQ(stored()->objectForKey("theirs"), id("2"));
}

TEST_F(Store, WriteLeavesTheFileAndItsLockOnly) {
    set("key", "value");

    EXPECT_THAT(names(), ElementsAre(".lock." + domain(), domain() + ".plist"));
    EXPECT_THAT(namesLikeTheFile(), ElementsAre(domain() + ".plist"));
}

TEST_F(Store, MissingFolderIsMade) {
    std::filesystem::remove_all(root() + "/var");

    EXPECT_TRUE(set("key", "value"));

    EXPECT_EQ(preferenceValue(domain(), "key"), id("value"));
    EXPECT_THAT(log(), IsEmpty());
}

TEST_F(Store, DomainsDoNotMix) {
    set(domain() + ".one", "key", "1");
    set(domain() + ".two", "key", "2");

    EXPECT_EQ(preferenceValue(domain() + ".one", "key"), id("1"));
    EXPECT_EQ(preferenceValue(domain() + ".two", "key"), id("2"));
}

TEST_F(Store, NameThatWouldLeaveTheFolderIsNoDomain) {
    for (const std::string& name : {std::string(), std::string("../escape"), std::string("a/b"), std::string(".hidden"),
                                    std::string("zero\0byte", 9), std::string(300, 'x')}) {
        EXPECT_FALSE(set(name, "key", "value"));
        EXPECT_FALSE(preferenceValue(name, "key"));
    }
    EXPECT_EQ(log().size(), 6u);
    EXPECT_THAT(names(), IsEmpty());
}

TEST_F(Store, ValueThatIsNoPropertyListIsRefused) {
    EXPECT_FALSE(set("key", id(NSObject::alloc())));

    EXPECT_FALSE(preferenceValue(domain(), "key"));
    EXPECT_EQ(log().size(), 1u);
    EXPECT_THAT(names(), IsEmpty());
}

TEST_F(Store, ThreadsOfOneProcessLoseNoKey) {
    constexpr int threads = 8;
    constexpr int keys = 25;
    std::vector<std::thread> writers;
    for (int thread = 0; thread < threads; ++thread)
        writers.emplace_back([thread] {
            for (int key = 0; key < keys; ++key) set(std::to_string(thread) + "/" + std::to_string(key), "x");
        });
    for (auto& writer : writers) writer.join();

    EXPECT_TRUE(awaitPendingPreferences(std::chrono::seconds(20)));
    EXPECT_EQ(stored()->count(), std::size_t(threads * keys));
}

} // namespace
