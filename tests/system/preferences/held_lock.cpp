#include "tests/system/preferences/Child.h"
#include "tests/system/preferences/fixture.h"

#include "platform/foundation/NSData.h"
#include "platform/foundation/NSPropertyListSerialization.h"

#include <atomic>
#include <chrono>
#include <fstream>
#include <gmock/gmock.h>
#include <optional>
#include <thread>

using namespace seat;
using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

namespace {

// A process that took the lock and was then stopped.
class HeldLock : public PreferencesTest {
protected:
    HeldLock() : m_holder(std::in_place, std::vector<std::string>{WRITER_PROGRAM, root(), "hold", domain()}) {
        EXPECT_EQ(m_holder->line(), "held");
        m_holder->signal(SIGSTOP);
        m_holder->waitUntilStopped();
    }
    ~HeldLock() override {
        letGo();
        awaitPendingPreferences(10s);
    }
    void letGo() { m_holder.reset(); }
    std::string path() const { return "/var/mobile/Library/Preferences/" + domain() + ".plist"; }
    std::shared_ptr<NSMutableDictionary> inTheFile() const {
        std::shared_ptr<NSError> error;
        const std::string bytes = contents(file());
        const auto data = NSData::dataWithVector({bytes.begin(), bytes.end()});
        return NSPropertyListSerialization::propertyListWithData_options_format_error(*data, 0, nullptr, &error)
            .object<NSMutableDictionary>();
    }
    static std::shared_ptr<NSData> dataOf(const std::shared_ptr<NSMutableDictionary>& values) {
        return NSPropertyListSerialization::dataWithPropertyList_format_options_error(id(values), 200, 0, nullptr);
    }

private:
    std::optional<Child> m_holder;
};

TEST_F(HeldLock, AWriteDoesNotWaitAndIsReadBack) {
    const auto start = std::chrono::steady_clock::now();

    for (int i = 0; i < 100; ++i)
        EXPECT_EQ(setPreferenceValue(domain(), "key", std::to_string(i)), PreferenceWrite::Pending);

    EXPECT_LT(std::chrono::steady_clock::now() - start, 50ms) << "a hundred writes";
    EXPECT_EQ(preferenceValue(domain(), "key"), id("99"));
    EXPECT_FALSE(std::filesystem::exists(file()));
    EXPECT_THAT(log(), IsEmpty());
}

TEST_F(HeldLock, AReadOfTheWholeFileHasWhatWaits) {
    setPreferenceValue(domain(), "key", "value");

    const auto values = NSMutableDictionary::dictionaryWithContentsOfFile(path());

    ASSERT_TRUE(values);
    EXPECT_EQ(values->objectForKey("key"), id("value"));
}

TEST_F(HeldLock, AWriteOfTheWholeFileDoesNotWaitAndComesAfterWhatWasSetBefore) {
    setPreferenceValue(domain(), "key", "before");
    const auto values = NSMutableDictionary::dictionaryWithContentsOfFile(path());
    ASSERT_TRUE(values);
    values->setObject_forKey("map", "keymap");

    const auto start = std::chrono::steady_clock::now();
    EXPECT_TRUE(dataOf(values)->writeToFile_options_error(path(), NSDataWritingAtomic, nullptr));
    EXPECT_LT(std::chrono::steady_clock::now() - start, 40ms);
    EXPECT_EQ(preferenceValue(domain(), "keymap"), id("map"));
    setPreferenceValue(domain(), "key", "after");
    EXPECT_EQ(preferenceValue(domain(), "key"), id("after"));
    EXPECT_FALSE(std::filesystem::exists(file()));

    letGo();
    EXPECT_TRUE(awaitPendingPreferences(10s));
    ASSERT_TRUE(inTheFile());
    EXPECT_EQ(inTheFile()->objectForKey("keymap"), id("map"));
    EXPECT_EQ(inTheFile()->objectForKey("key"), id("after"));
}

TEST_F(HeldLock, WhatWaitsIsStoredAndToldOfOnceWhenTheLockIsFree) {
    std::atomic<int> told = 0;
    const auto ended = [&](PreferenceWrite how) {
        EXPECT_EQ(how, PreferenceWrite::Stored);
        EXPECT_EQ(inTheFile()->objectForKey("key"), id("newer"));
        ++told;
    };
    setPreferenceValue(domain(), "key", "older", ended);
    setPreferenceValue(domain(), "key", "newer", ended);
    EXPECT_EQ(told, 0);

    letGo();
    EXPECT_TRUE(awaitPendingPreferences(10s));

    while (told < 2) std::this_thread::yield();
    EXPECT_EQ(inTheFile()->objectForKey("key"), id("newer"));
}

TEST_F(HeldLock, WhatWaitsAsksForTheLockOnceAndThenSleeps) {
    setPreferenceValue(domain(), "key", "value");

    const auto sleeps = [us = " " + std::to_string(::getpid()) + " "] {
        std::ifstream locks("/proc/locks");
        for (std::string line; std::getline(locks, line);)
            if (line.find("-> FLOCK") != std::string::npos && line.find(us) != std::string::npos) return true;
        return false;
    };
    const auto end = std::chrono::steady_clock::now() + 20s;
    while (!sleeps() && std::chrono::steady_clock::now() < end) std::this_thread::sleep_for(1ms);
    EXPECT_TRUE(sleeps());
}

TEST_F(HeldLock, OtherKeysThatTheHolderHasWrittenAreKept) {
    setPreferenceValue(domain(), "ours", "1");
    const auto theirs = NSMutableDictionary::dictionary();
    theirs->setObject_forKey("2", "theirs");
    const auto data = dataOf(theirs);
    write(file(), {data->bytes().begin(), data->bytes().end()});

    letGo();
    EXPECT_TRUE(awaitPendingPreferences(10s));

    EXPECT_EQ(inTheFile()->objectForKey("theirs"), id("2"));
    EXPECT_EQ(inTheFile()->objectForKey("ours"), id("1"));
}

TEST_F(HeldLock, WhatCannotBeStoredAfterTheWaitIsLostAndToldOf) {
    std::atomic<int> told = 0;
    setPreferenceValue(domain(), "key", "value", [&](PreferenceWrite how) {
        EXPECT_EQ(how, PreferenceWrite::Failed);
        ++told;
    });
    std::filesystem::create_directory(file());

    letGo();
    EXPECT_TRUE(awaitPendingPreferences(10s));

    while (told == 0) std::this_thread::yield();
    EXPECT_THAT(log(), ElementsAre(HasSubstr("a folder is in its place; what was to be stored is lost")));
    EXPECT_FALSE(preferenceValue(domain(), "key"));
}

TEST_F(HeldLock, AtTheEndOfTheProcessTheLossIsLogged) {
    setPreferenceValue(domain(), "one", "1");
    setPreferenceValue(domain(), "two", "2");
    const auto start = std::chrono::steady_clock::now();

    EXPECT_FALSE(awaitPendingPreferences(200ms));

    EXPECT_LT(std::chrono::steady_clock::now() - start, 2s);
    EXPECT_THAT(log(),
                ElementsAre(HasSubstr(domain() + ": another program holds their lock; changes that are lost: 2")));
}

TEST_F(HeldLock, ReadingDoesNotWait) {
    const auto start = std::chrono::steady_clock::now();

    EXPECT_FALSE(preferenceValue(domain(), "key"));

    EXPECT_LT(std::chrono::steady_clock::now() - start, 40ms);
}

} // namespace
