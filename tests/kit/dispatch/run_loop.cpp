#include "kit/dispatch/run_loop_sources.h"

#include "kit/dispatch/ManualClock.h"
#include "platform/dispatch.h"
#include "system/run_loop/PollLoop.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

namespace {

class Pair {
public:
    Pair() { ::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, m_ends); }
    ~Pair() {
        ::close(m_ends[0]);
        ::close(m_ends[1]);
    }
    int here() const { return m_ends[0]; }
    void sendFromThere(char c) const { ASSERT_EQ(::write(m_ends[1], &c, 1), 1); }
    char receiveHere() const {
        char c = '?';
        return ::read(m_ends[0], &c, 1) == 1 ? c : '-';
    }

private:
    int m_ends[2]{-1, -1};
};

TEST(RunLoop, RunsWhatAnotherThreadQueues) {
    seat::PollLoop loop;
    bool ran = false;
    std::thread other([&] { dispatch_async(dispatch_get_main_queue(), [&] { ran = true; }); });

    EXPECT_TRUE(loop.runUntil([&] { return ran; }));

    other.join();
}

TEST(RunLoop, RunsWhatWasQueuedBeforeItWasThere) {
    bool ran = false;
    dispatch_async(dispatch_get_main_queue(), [&] { ran = true; });
    seat::PollLoop loop;

    loop.runReady();

    EXPECT_TRUE(ran);
}

TEST(RunLoop, CallsBackWhileADescriptorIsReadable) {
    seat::PollLoop loop;
    const Pair pair;
    std::string received;
    const auto token = seat::addReadableSource(pair.here(), [&] { received += pair.receiveHere(); });
    loop.runReady();
    EXPECT_EQ(received, "");

    pair.sendFromThere('a');
    pair.sendFromThere('b');

    EXPECT_TRUE(loop.runUntil([&] { return received == "ab"; }));
    seat::removeSource(token);
}

TEST(RunLoop, RemovedSourceIsSilent) {
    seat::PollLoop loop;
    const Pair pair;
    int calls = 0;
    const auto token = seat::addReadableSource(pair.here(), [&] { ++calls; });
    pair.sendFromThere('a');

    seat::removeSource(token);
    seat::removeSource(token);
    seat::removeSource(0);
    loop.runReady();

    EXPECT_EQ(calls, 0);
}

TEST(RunLoop, CallbackMayRemoveItselfAndOthers) {
    seat::PollLoop loop;
    const Pair one, two;
    int calls = 0;
    seat::SourceToken first = 0, second = 0;
    const auto onlyOnce = [&] {
        ++calls;
        seat::removeSource(first);
        seat::removeSource(second);
    };
    first = seat::addReadableSource(one.here(), onlyOnce);
    second = seat::addReadableSource(two.here(), onlyOnce);
    one.sendFromThere('a');
    two.sendFromThere('b');

    loop.runReady();
    loop.runReady();

    EXPECT_EQ(calls, 1);
}

TEST(RunLoop, SourceFromBeforeTheLoopIsWatchedByEachLoop) {
    const Pair pair;
    std::string received;
    const auto token = seat::addReadableSource(pair.here(), [&] { received += pair.receiveHere(); });
    for (const char c : {'a', 'b'}) {
        seat::PollLoop loop;
        pair.sendFromThere(c);
        EXPECT_TRUE(loop.runUntil([&] { return received.ends_with(c); }));
    }
    seat::removeSource(token);
    EXPECT_EQ(received, "ab");
}

TEST(RunLoop, TimerFiresOnceInItsOrder) {
    seat::PollLoop loop;
    std::string events;
    seat::addTimer(0.02, [&] { events += "b"; });
    seat::addTimer(0.01, [&] { events += "a"; });
    seat::addTimer(0, [&] { events += "0"; });
    EXPECT_EQ(events, "");

    EXPECT_TRUE(loop.runUntil([&] { return events.size() == 3; }));

    EXPECT_EQ(events, "0ab");
    EXPECT_FALSE(seat::nextTimerDeadline());
}

TEST(RunLoop, TimersOfOneInstantFireAsTheyWereAdded) {
    seat::ManualClock clock;
    std::string events;
    for (const char* const name : {"a", "b", "c"}) seat::addTimer(1, [&events, name] { events += name; });

    clock.advance(1);

    EXPECT_EQ(events, "abc");
}

TEST(RunLoop, TimerAddedByATimerWaitsForItsTurn) {
    seat::ManualClock clock;
    int fired = 0;
    seat::addTimer(0, [&] {
        ++fired;
        seat::addTimer(0, [&] { ++fired; });
    });

    seat::fireDueTimers();
    EXPECT_EQ(fired, 1);
    seat::fireDueTimers();
    EXPECT_EQ(fired, 2);
}

TEST(RunLoop, HeldClockFiresNothingByWaiting) {
    seat::ManualClock clock;
    seat::PollLoop loop;
    bool fired = false;
    seat::addTimer(0.001, [&] { fired = true; });

    EXPECT_FALSE(loop.runUntil([&] { return fired; }, 0.02));
    clock.advance(0.001);

    EXPECT_TRUE(fired);
}

TEST(RunLoop, ObjectThatDiesWithItsCallbackMayRemoveSources) {
    struct Owner {
        ~Owner() { seat::removeSource(other); }
        seat::SourceToken other = 0;
    };
    auto owner = std::make_shared<Owner>();
    owner->other = seat::addTimer(5, [] {});
    const auto timer = seat::addTimer(4, [owner] {});
    owner.reset();

    seat::removeSource(timer);

    EXPECT_FALSE(seat::nextTimerDeadline());
}

TEST(RunLoop, SleepsWhileNothingHappens) {
    seat::PollLoop loop;
    rusage before{}, after{};
    ::getrusage(RUSAGE_THREAD, &before);

    EXPECT_FALSE(loop.runUntil([] { return false; }, 0.05));

    ::getrusage(RUSAGE_THREAD, &after);
    EXPECT_LE(after.ru_nvcsw - before.ru_nvcsw, 5);
}

} // namespace
