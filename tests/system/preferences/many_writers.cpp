#include "tests/system/preferences/Child.h"
#include "tests/system/preferences/fixture.h"

#include <atomic>
#include <chrono>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <thread>

using ::testing::ElementsAre;

namespace {

using ManyWriters = PreferencesTest;

TEST_F(ManyWriters, EightProcessesWithTwoHundredWritesEachLoseNoKey) {
    constexpr int processes = 8;
    constexpr int keys = 200;
    std::vector<std::unique_ptr<Child>> children;
    for (int i = 0; i < processes; ++i)
        children.push_back(std::make_unique<Child>(std::vector<std::string>{
            WRITER_PROGRAM, root(), "write", domain(), "process-" + std::to_string(i) + "-", std::to_string(keys)}));

    for (auto& child : children) EXPECT_EQ(child->wait(), 0);

    const auto values = stored();
    ASSERT_TRUE(values);
    EXPECT_EQ(values->count(), std::size_t(processes * keys));
    for (int process = 0; process < processes; ++process)
        for (int key = 0; key < keys; ++key)
            EXPECT_EQ(
                values->objectForKey("process-" + std::to_string(process) + "-" + std::to_string(key)).integerValue(),
                key);
    EXPECT_THAT(namesLikeTheFile(), ElementsAre(domain() + ".plist"));
}

TEST_F(ManyWriters, LoseNoKeyWhileTheLocksFileIsRemovedAgainAndAgain) {
    constexpr int processes = 8;
    constexpr int keys = 200;
    std::atomic<bool> isOver = false;
    int removed = 0;
    std::thread remover([&] {
        // Once for each write that was seen, so that slow writers, as instrumented ones are, come to their end too.
        for (ino_t seen = 0; !isOver;) {
            struct stat file {};
            if (::stat((folder() + "/" + domain() + ".plist").c_str(), &file) == 0 && file.st_ino != seen) {
                seen = file.st_ino;
                std::error_code error;
                if (std::filesystem::remove(folder() + "/.lock." + domain(), error)) ++removed;
            }
            std::this_thread::yield();
        }
    });
    // One round of eight would not always meet the moments that count.
    for (int round = 0; round < 10 && !HasFailure(); ++round) {
        std::filesystem::remove(folder() + "/" + domain() + ".plist");
        std::vector<std::unique_ptr<Child>> children;
        for (int i = 0; i < processes; ++i)
            children.push_back(std::make_unique<Child>(std::vector<std::string>{
                WRITER_PROGRAM, root(), "write", domain(), std::to_string(i) + "-", std::to_string(keys)}));

        for (auto& child : children) EXPECT_EQ(child->wait(), 0);

        EXPECT_TRUE(stored());
        EXPECT_EQ(stored() ? stored()->count() : 0, std::size_t(processes * keys));
    }

    isOver = true;
    remover.join();
    EXPECT_GT(removed, 30);
}

TEST_F(ManyWriters, ReaderSeesAWholeFileAtEveryInstant) {
    seat::setPreferenceValue(domain(), "always", "there");
    Child writer({WRITER_PROGRAM, root(), "write", domain(), "key-", "100"});

    int reads = 0;
    for (auto values = stored();; values = stored(), ++reads) {
        ASSERT_TRUE(values);
        ASSERT_EQ(values->objectForKey("always"), id("there"));
        if (values->objectForKey("key-99")) break;
    }

    EXPECT_EQ(writer.wait(), 0);
    EXPECT_GT(reads, 10);
}

} // namespace
