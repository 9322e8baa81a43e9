#include "tests/system/preferences/fixture.h"

#include "platform/foundation/NSArray.h"
#include "platform/foundation/NSPropertyListSerialization.h"

#include <chrono>
#include <gmock/gmock.h>
#include <sys/stat.h>

using namespace seat;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

namespace {

class DamagedFiles : public PreferencesTest {
protected:
    std::string aside(int n) const { return folder() + "/" + domain() + ".damaged-" + std::to_string(n); }

    // Whatever is in the file: reading is quick and does not change it, the first write loses nothing of it.
    void expectSafe(const std::string& bytes) {
        std::filesystem::remove(file());
        write(file(), bytes);
        const auto start = std::chrono::steady_clock::now();
        preferenceValue(domain(), "key");
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(100));
        EXPECT_EQ(contents(file()), bytes);
        const bool wasReadable = stored() != nullptr;

        EXPECT_TRUE(set("key", "value"));

        EXPECT_EQ(preferenceValue(domain(), "key"), id("value"));
        if (wasReadable) return;
        EXPECT_EQ(contents(aside(1)), bytes);
        std::filesystem::remove(aside(1));
    }
    // A file as the page writes it.
    std::string goodFile() const {
        set(domain() + ".good", "controller_type", NSNumber::numberWithInteger(1));
        set(domain() + ".good", "JVNLEDColorKey", "004efd");
        set(domain() + ".good", "JVNAmbientColorKey", NSNumber::numberWithBool(true));
        return contents(folder() + "/" + domain() + ".good.plist");
    }
};

TEST_F(DamagedFiles, DamagedFileReadsAsEmptyAndStaysUntouched) {
    write(file(), "bplist00 nonsense");

    EXPECT_FALSE(preferenceValue(domain(), "key"));
    EXPECT_FALSE(preferenceValue(domain(), "other"));

    EXPECT_EQ(contents(file()), "bplist00 nonsense");
    EXPECT_THAT(log(), ElementsAre(HasSubstr("reading the preferences " + domain())));
}

TEST_F(DamagedFiles, FirstWriteMovesItAsideByteForByte) {
    write(file(), "bplist00 nonsense");

    EXPECT_TRUE(set("key", "value"));

    EXPECT_EQ(contents(aside(1)), "bplist00 nonsense");
    EXPECT_EQ(stored()->count(), 1u);
    EXPECT_THAT(log(), ElementsAre(HasSubstr("moved aside to " + domain() + ".damaged-1")));
}

TEST_F(DamagedFiles, WhatWasMovedAsideIsNoWriteUnderWay) {
    write(file(), "damaged");

    set("key", "value");

    EXPECT_THAT(namesLikeTheFile(), ElementsAre(domain() + ".plist"));
}

TEST_F(DamagedFiles, SecondDamagedFileDoesNotReplaceTheFirst) {
    write(file(), "one");
    set("key", "value");
    write(file(), "two");

    set("key", "value");

    EXPECT_EQ(contents(aside(1)), "one");
    EXPECT_EQ(contents(aside(2)), "two");
}

TEST_F(DamagedFiles, EmptyFileCountsAsDamaged) { expectSafe(""); }

TEST_F(DamagedFiles, PropertyListThatIsNoDictionaryCountsAsDamaged) {
    expectSafe("<?xml version=\"1.0\"?><plist version=\"1.0\"><array/></plist>");
}

TEST_F(DamagedFiles, FileCutAtAnyByteLosesNothing) {
    const std::string whole = goodFile();
    for (std::size_t length = 0; length < whole.size(); ++length) expectSafe(whole.substr(0, length));
}

TEST_F(DamagedFiles, FileWithAnyByteFlippedLosesNothing) {
    const std::string whole = goodFile();
    for (std::size_t at = 0; at < whole.size(); ++at) {
        std::string flipped = whole;
        flipped[at] = static_cast<char>(flipped[at] ^ (1 << (at % 8)));
        expectSafe(flipped);
    }
}

TEST_F(DamagedFiles, LineIsLoggedAgainAfterTheFileWasGoodInBetween) {
    write(file(), "damaged");
    preferenceValue(domain(), "key");
    std::filesystem::remove(file());
    preferenceValue(domain(), "key");
    write(file(), "damaged");

    preferenceValue(domain(), "key");

    EXPECT_EQ(log().size(), 2u);
}

} // namespace
