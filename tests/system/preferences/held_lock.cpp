#include "tests/system/preferences/Child.h"
#include "tests/system/preferences/fixture.h"

#include <atomic>
#include <chrono>
#include <gmock/gmock.h>

using namespace seat;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

namespace {

// A process that took the lock and was then stopped.
class HeldLock : public PreferencesTest {
protected:
    HeldLock() : m_holder({WRITER_PROGRAM, root(), "hold", domain()}) {
        EXPECT_EQ(m_holder.line(), "held");
        m_holder.signal(SIGSTOP);
        m_holder.waitUntilStopped();
    }
    void letGo() {
        m_holder.signal(SIGKILL);
        m_holder.wait();
    }

private:
    Child m_holder;
};

TEST_F(HeldLock, WriteGivesUpSoonAndTheValueIsKept) {
    const auto start = std::chrono::steady_clock::now();

    EXPECT_FALSE(setPreferenceValue(domain(), "key", "value"));

    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(250));
    EXPECT_EQ(preferenceValue(domain(), "key"), id("value"));
    EXPECT_FALSE(stored());
    EXPECT_THAT(log(), ElementsAre(HasSubstr("another process holds its lock")));

    letGo();
    EXPECT_TRUE(storeKeptPreferences(std::chrono::seconds(5)));
}

TEST_F(HeldLock, ValueThatWasSetAgainIsStoredInItsLastForm) {
    setPreferenceValue(domain(), "key", "older");
    setPreferenceValue(domain(), "key", "newer");

    letGo();
    EXPECT_TRUE(storeKeptPreferences(std::chrono::seconds(5)));

    EXPECT_EQ(stored()->objectForKey("key"), id("newer"));
}

TEST_F(HeldLock, ReadingDoesNotWait) {
    const auto start = std::chrono::steady_clock::now();

    EXPECT_FALSE(preferenceValue(domain(), "key"));

    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(40));
    letGo();
}

TEST_F(HeldLock, ValueIsStoredAndToldOfWhenTheLockIsFree) {
    std::atomic<int> told = 0;
    EXPECT_FALSE(setPreferenceValue(domain(), "key", "value", [&] {
        ++told;
        told.notify_one();
    }));
    EXPECT_EQ(told, 0);

    letGo();

    // The worker that waits for the lock tells; until then there is nothing to do here.
    told.wait(0);
    EXPECT_EQ(stored()->objectForKey("key"), id("value"));
}

} // namespace
