// A save for which there is no memory, at each of its allocations.

#include "tests/system/preferences/Child.h"
#include "tests/system/preferences/fixture.h"

#include <cstdlib>
#include <gmock/gmock.h>
#include <new>

using namespace seat;
using ::testing::ElementsAre;

namespace {

thread_local long allocationsLeft = -1; // negative: as many as are asked for

void* allocate(std::size_t size) {
    if (allocationsLeft == 0) throw std::bad_alloc();
    if (allocationsLeft > 0) --allocationsLeft;
    if (void* const memory = std::malloc(size ? size : 1)) return memory;
    throw std::bad_alloc();
}

// From now on this thread gets so many pieces of memory, and then no more.
class ScarceMemory {
public:
    explicit ScarceMemory(long allocations) { allocationsLeft = allocations; }
    ~ScarceMemory() { allocationsLeft = -1; }
};

class OutOfMemory : public PreferencesTest {
protected:
    OutOfMemory() {
        setLogSink([](std::string_view) {});
    } // the fixture's takes memory itself
};

} // namespace

// A program's own operators stand before the library's.
void* operator new(std::size_t size) { return allocate(size); }
void* operator new[](std::size_t size) { return allocate(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }

namespace {

TEST_F(OutOfMemory, LosesTheValueAndNothingElseAtAnyAllocationOfASave) {
    ASSERT_TRUE(set("before", "1"));
    const std::string domain = OutOfMemory::domain();
    const std::string key = "a key that is too long to be kept in place";
    int failures = 0;
    for (long allocations = 0;; ++allocations) {
        const id value = "a value of its own: " + std::to_string(allocations);
        auto how = PreferenceWrite::Pending;
        {
            const ScarceMemory memory(allocations);
            how = setPreferenceValue(domain, key, value);
        }
        ASSERT_NE(how, PreferenceWrite::Pending);
        const auto values = stored();
        ASSERT_TRUE(values) << "after " << allocations << " allocations";
        EXPECT_EQ(values->objectForKey("before"), id("1"));
        EXPECT_EQ(values->objectForKey(key) == value, how == PreferenceWrite::Stored);
        EXPECT_EQ(preferenceValue(domain, key), values->objectForKey(key));
        EXPECT_THAT(namesLikeTheFile(), ElementsAre(domain + ".plist"));
        if (how == PreferenceWrite::Stored) break;
        ++failures;
    }
    EXPECT_GT(failures, 20);
    EXPECT_TRUE(awaitPendingPreferences());
}

} // namespace
