#include "host/dispatch/run_loop_sources.h"

#include "host/testing/manual_clock.h"
#include "host/testing/poll_loop.h"
#include "platform/dispatch.h"

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
    host::PollLoop loop;
    bool ran = false;
    std::thread other([&] { dispatch_async(dispatch_get_main_queue(), [&] { ran = true; }); });

    EXPECT_TRUE(loop.runUntil([&] { return ran; }));

    other.join();
}

TEST(RunLoop, RunsWhatWasQueuedBeforeItWasThere) {
    bool ran = false;
    dispatch_async(dispatch_get_main_queue(), [&] { ran = true; });
    host::PollLoop loop;

    loop.runReady();

    EXPECT_TRUE(ran);
}

TEST(RunLoop, CallsBackWhileADescriptorIsReadable) {
    host::PollLoop loop;
    const Pair pair;
    std::string received;
    const auto token = host::addReadableSource(pair.here(), [&] { received += pair.receiveHere(); });
    loop.runReady();
    EXPECT_EQ(received, "");

    pair.sendFromThere('a');
    pair.sendFromThere('b');

    EXPECT_TRUE(loop.runUntil([&] { return received == "ab"; }));
    host::removeSource(token);
}

TEST(RunLoop, RemovedSourceIsSilent) {
    host::PollLoop loop;
    const Pair pair;
    int calls = 0;
    const auto token = host::addReadableSource(pair.here(), [&] { ++calls; });
    pair.sendFromThere('a');

    host::removeSource(token);
    host::removeSource(token);
    host::removeSource(0);
    loop.runReady();

    EXPECT_EQ(calls, 0);
}

TEST(RunLoop, CallbackMayRemoveItselfAndOthers) {
    host::PollLoop loop;
    const Pair one, two;
    int calls = 0;
    host::SourceToken first = 0, second = 0;
    const auto onlyOnce = [&] {
        ++calls;
        host::removeSource(first);
        host::removeSource(second);
    };
    first = host::addReadableSource(one.here(), onlyOnce);
    second = host::addReadableSource(two.here(), onlyOnce);
    one.sendFromThere('a');
    two.sendFromThere('b');

    loop.runReady();
    loop.runReady();

    EXPECT_EQ(calls, 1);
}

TEST(RunLoop, SourceFromBeforeTheLoopIsWatchedByEachLoop) {
    const Pair pair;
    std::string received;
    const auto token = host::addReadableSource(pair.here(), [&] { received += pair.receiveHere(); });
    for (const char c : {'a', 'b'}) {
        host::PollLoop loop;
        pair.sendFromThere(c);
        EXPECT_TRUE(loop.runUntil([&] { return received.ends_with(c); }));
    }
    host::removeSource(token);
    EXPECT_EQ(received, "ab");
}

TEST(RunLoop, TimerFiresOnceInItsOrder) {
    host::PollLoop loop;
    std::string events;
    host::addTimer(0.02, [&] { events += "b"; });
    host::addTimer(0.01, [&] { events += "a"; });
    host::addTimer(0, [&] { events += "0"; });
    EXPECT_EQ(events, "");

    EXPECT_TRUE(loop.runUntil([&] { return events.size() == 3; }));

    EXPECT_EQ(events, "0ab");
    EXPECT_FALSE(host::nextTimerDeadline());
}

TEST(RunLoop, TimersOfOneInstantFireAsTheyWereAdded) {
    host::ManualClock clock;
    std::string events;
    for (const char* const name : {"a", "b", "c"}) host::addTimer(1, [&events, name] { events += name; });

    clock.advance(1);

    EXPECT_EQ(events, "abc");
}

TEST(RunLoop, TimerAddedByATimerWaitsForItsTurn) {
    host::ManualClock clock;
    int fired = 0;
    host::addTimer(0, [&] {
        ++fired;
        host::addTimer(0, [&] { ++fired; });
    });

    host::fireDueTimers();
    EXPECT_EQ(fired, 1);
    host::fireDueTimers();
    EXPECT_EQ(fired, 2);
}

TEST(RunLoop, HeldClockFiresNothingByWaiting) {
    host::ManualClock clock;
    host::PollLoop loop;
    bool fired = false;
    host::addTimer(0.001, [&] { fired = true; });

    EXPECT_FALSE(loop.runUntil([&] { return fired; }, 0.02));
    clock.advance(0.001);

    EXPECT_TRUE(fired);
}

TEST(RunLoop, ObjectThatDiesWithItsCallbackMayRemoveSources) {
    struct Owner {
        ~Owner() { host::removeSource(other); }
        host::SourceToken other = 0;
    };
    auto owner = std::make_shared<Owner>();
    owner->other = host::addTimer(5, [] {});
    const auto timer = host::addTimer(4, [owner] {});
    owner.reset();

    host::removeSource(timer);

    EXPECT_FALSE(host::nextTimerDeadline());
}

TEST(RunLoop, SleepsWhileNothingHappens) {
    host::PollLoop loop;
    rusage before{}, after{};
    ::getrusage(RUSAGE_THREAD, &before);

    EXPECT_FALSE(loop.runUntil([] { return false; }, 0.05));

    ::getrusage(RUSAGE_THREAD, &after);
    EXPECT_LE(after.ru_nvcsw - before.ru_nvcsw, 5);
}

} // namespace
