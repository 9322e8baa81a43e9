// Files that take longer than a frame to read or to write: the main thread does neither while a row is used.

#include "tests/support/SystemCalls.h"
#include "tests/system/preferences/fixture.h"

#include "kit/foundation/property_list.h"
#include "system/preferences/KnownPreferences.h"

#include <atomic>
#include <chrono>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <thread>

using namespace seat;
using namespace std::chrono_literals;
using testing_support::SystemCall;
using testing_support::SystemCalls;

namespace {

class LargeFile : public PreferencesTest {
protected:
    ~LargeFile() override { awaitPendingPreferences(60s); }

    static constexpr int count = 90'000;
    // As long for each digit.
    static std::string bytesWith(char digit, int keys = count) {
        const auto values = NSMutableDictionary::dictionary();
        for (int i = 0; i < keys; ++i) values->setObject_forKey(NSNumber::numberWithInteger(i), std::to_string(i));
        values->setObject_forKey(std::string(1, digit), "digit");
        const auto nested = NSMutableDictionary::dictionary();
        nested->setObject_forKey("value", "key");
        values->setObject_forKey(id(nested), "nested");
        std::string refusal;
        const auto bytes = writeBinaryPropertyList(id(values), refusal);
        return {bytes->bytes().begin(), bytes->bytes().end()};
    }
    id digit() const { return preferenceValue(domain(), "digit"); }
    template <class Use> static int readsOnThisThread(Use use) {
        const auto here = std::this_thread::get_id();
        std::atomic<int> reads = 0;
        SystemCalls calls;
        calls.before(SystemCall::Read, [&](int) { reads += std::this_thread::get_id() == here; });
        use();
        calls.clear();
        return reads;
    }
    // Until its times are far enough behind for a change of it to show.
    void readUntilItIsKnown() {
        const auto end = std::chrono::steady_clock::now() + 60s;
        while (readsOnThisThread([&] { digit(); }) > 0) ASSERT_LT(std::chrono::steady_clock::now(), end);
    }
};

TEST_F(LargeFile, IsWrittenByAWorkerAndReadBackAtOnce) {
    write(file(), bytesWith('1'));
    const auto here = std::this_thread::get_id();
    std::atomic<int> writesHere = 0;
    std::atomic<bool> isStored = false;
    {
        SystemCalls calls;
        for (const auto call : {SystemCall::Write, SystemCall::Flush, SystemCall::Read, SystemCall::Rename})
            calls.before(call, [&](int) { writesHere += std::this_thread::get_id() == here; });

        EXPECT_EQ(setPreferenceValue(domain(), "digit", "2",
                                     [&](PreferenceWrite how) { isStored = how == PreferenceWrite::Stored; }),
                  PreferenceWrite::Pending);
        EXPECT_EQ(digit(), id("2"));

        EXPECT_TRUE(awaitPendingPreferences(60s));
    }
    EXPECT_EQ(writesHere, 0);
    EXPECT_TRUE(isStored);
    EXPECT_EQ(stored()->objectForKey("digit"), id("2"));
    EXPECT_EQ(stored()->count(), std::size_t(count + 2));
    EXPECT_TRUE(log().empty());
}

TEST_F(LargeFile, IsKnownWhenItsWorkerTellsThatItIsStored) {
    write(file(), bytesWith('1'));
    setPreferenceValue(domain(), "digit", "2");
    EXPECT_TRUE(awaitPendingPreferences(60s));

    EXPECT_EQ(readsOnThisThread([&] { EXPECT_EQ(digit(), id("2")); }), 0);
}

TEST_F(LargeFile, IsReadOnceForAllOfItsKeys) {
    write(file(), bytesWith('1'));
    readUntilItIsKnown();

    const int reads = readsOnThisThread([&] {
        for (int i = 0; i < 100; ++i) EXPECT_EQ(preferenceValue(domain(), std::to_string(i)).integerValue(), i);
        EXPECT_FALSE(preferenceValue(domain(), "none"));
    });

    EXPECT_EQ(reads, 0);
}

TEST_F(LargeFile, ThatAnotherProgramReplacesIsReadAfresh) {
    write(file(), bytesWith('1'));
    readUntilItIsKnown();

    write(file() + ".other", bytesWith('2'));
    std::filesystem::rename(file() + ".other", file());
    EXPECT_EQ(digit(), id("2"));

    std::filesystem::remove(file());
    EXPECT_FALSE(digit());
}

TEST_F(LargeFile, ThatIsWrittenInItsPlaceToTheSameLengthIsReadAfreshEachTime) {
    // Read in less time than the file system's times take for a step.
    const std::string bytes[] = {bytesWith('1', 8'000), bytesWith('2', 8'000)};
    ASSERT_EQ(bytes[0].size(), bytes[1].size());
    ASSERT_GT(bytes[0].size(), largePreferencesFile);
    for (int i = 0; i < 10; ++i) {
        write(file(), bytes[i % 2]);
        EXPECT_EQ(digit(), id(i % 2 ? "2" : "1")) << i;
    }
}

// The file system's times move in steps: a second change within one would not show.
TEST_F(LargeFile, IsNotKnownByWhatWasReadRightAfterItChanged) {
    write(file(), bytesWith('1', 8'000));
    const int directory = ::open(folder().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const auto isKnownWhenReadLater = [&](std::time_t seconds, long nanoseconds) {
        KnownPreferences known;
        auto read = PreferencesFile::read(directory, domain() + ".plist");
        timespec begun = read.status.st_ctim;
        begun.tv_sec += seconds;
        begun.tv_nsec += nanoseconds;
        known.keep(file(), std::move(read), begun);
        return known.value(file(), "digit") == id("1");
    };

    EXPECT_FALSE(isKnownWhenReadLater(0, 0));
    EXPECT_FALSE(isKnownWhenReadLater(0, 10'000'000));
    EXPECT_TRUE(isKnownWhenReadLater(0, 30'000'000));
    EXPECT_TRUE(isKnownWhenReadLater(3600, 0));
    EXPECT_FALSE(isKnownWhenReadLater(-3600, 0)) << "its clock is ahead of ours";
    ::close(directory);
}

TEST_F(LargeFile, GivesEachReaderADictionaryOfItsOwn) {
    write(file(), bytesWith('1'));
    readUntilItIsKnown();
    const auto nested = [&] { return preferenceValue(domain(), "nested").object<NSMutableDictionary>(); };

    nested()->setObject_forKey("changed", "key");

    EXPECT_EQ(nested()->objectForKey("key"), id("value"));
}

TEST_F(LargeFile, IsStoredWholeByAWorkerAndReadBackAtOnce) {
    const std::string bytes = bytesWith('3');

    EXPECT_EQ(setPreferencesFile(domain(), {reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()}),
              PreferenceWrite::Pending);
    EXPECT_EQ(digit(), id("3"));
    setPreferenceValue(domain(), "digit", "4");
    EXPECT_EQ(digit(), id("4"));

    EXPECT_TRUE(awaitPendingPreferences(60s));
    EXPECT_EQ(stored()->objectForKey("digit"), id("4"));
    EXPECT_EQ(stored()->count(), std::size_t(count + 2));
}

TEST_F(LargeFile, ThatIsDamagedIsMovedAsideAndTheChangeStored) {
    write(file(), bytesWith('1').substr(0, largePreferencesFile + 1));

    EXPECT_EQ(setPreferenceValue(domain(), "digit", "2"), PreferenceWrite::Pending);

    EXPECT_TRUE(awaitPendingPreferences(60s));
    EXPECT_EQ(stored()->objectForKey("digit"), id("2"));
    EXPECT_TRUE(std::filesystem::exists(folder() + "/" + domain() + ".damaged-1"));
}

} // namespace
