#include "services/common/EventLoop.h"

#include "tests/support/HeldClock.h"

#include <csignal>
#include <gtest/gtest.h>
#include <string>
#include <sys/epoll.h>
#include <sys/resource.h>
#include <unistd.h>
#include <vector>

using namespace std::chrono_literals;
using services::EventLoop;

namespace {

struct Pipe {
    Pipe() { EXPECT_EQ(::pipe(ends), 0); }
    ~Pipe() {
        ::close(ends[0]);
        ::close(ends[1]);
    }
    void write() const { EXPECT_EQ(::write(ends[1], "x", 1), 1); }
    void read() const {
        char byte = 0;
        EXPECT_EQ(::read(ends[0], &byte, 1), 1);
    }
    int ends[2];
};

TEST(EventLoop, TimersFireInTheOrderOfTheirTimes) {
    testing_support::HeldClock clock;
    EventLoop loop(clock);
    std::string order;
    const auto c = loop.after(3s, [&] { order += 'c'; });
    const auto a = loop.after(1s, [&] { order += 'a'; });
    const auto b = loop.after(1s, [&] { order += 'b'; });

    clock.advance(loop, 2s);
    EXPECT_EQ(order, "ab");
    clock.advance(loop, 1s);

    EXPECT_EQ(order, "abc");
    EXPECT_FALSE(loop.nextTimer());
}

TEST(EventLoop, ATimerWhoseHandleHasGoneDoesNotFire) {
    testing_support::HeldClock clock;
    EventLoop loop(clock);
    bool fired = false;
    auto second = loop.after(1s, [&] { fired = true; });
    const auto first = loop.after(500ms, [&] { second.reset(); });

    clock.advance(loop, 2s);

    EXPECT_FALSE(fired);
}

TEST(EventLoop, ATimerMayDestroyItselfAndMakeAnother) {
    testing_support::HeldClock clock;
    EventLoop loop(clock);
    int fired = 0;
    EventLoop::Source timer;
    std::function<void()> again = [&] {
        ++fired;
        timer = loop.after(1s, again);
    };
    timer = loop.after(1s, again);

    clock.advance(loop, 5s);

    EXPECT_EQ(fired, 5);
}

TEST(EventLoop, WhatIsPutOffRunsByItselfWhileTimeIsHeld) {
    testing_support::HeldClock clock;
    EventLoop loop(clock);
    std::string order;
    const auto a = loop.soon([&] { order += 'a'; });
    const auto b = loop.soon([&] { order += 'b'; });

    EXPECT_TRUE(loop.runUntil([&] { return order.size() == 2; }));

    EXPECT_EQ(order, "ab");
}

TEST(EventLoop, TimePassesByItselfOnTheSystemsClock) {
    EventLoop loop;
    const auto begin = loop.now();
    const auto timer = loop.after(20ms, [&] { loop.quit(7); });

    EXPECT_EQ(loop.run(), 7);

    EXPECT_GE(loop.now() - begin, 20ms);
}

TEST(EventLoop, AWatchHearsOfEachByteUntilItsHandleGoes) {
    EventLoop loop;
    const Pipe pipe;
    int heard = 0;
    EventLoop::Source watch = loop.watch(pipe.ends[0], EPOLLIN, [&](std::uint32_t events) {
        EXPECT_EQ(events, EPOLLIN);
        pipe.read();
        if (++heard == 2) watch.reset();
    });

    for (int i = 0; i < 3; ++i) pipe.write();

    EXPECT_FALSE(loop.runUntil([&] { return heard == 3; }, 50ms));
    EXPECT_EQ(heard, 2);
}

TEST(EventLoop, ATimerComesHoweverBusyADescriptorIsAndHoweverManyTimersItMakes) {
    EventLoop loop;
    const Pipe pipe;
    pipe.write();
    int calls = 0;
    std::vector<EventLoop::Source> timers;
    const auto watch = loop.watch(pipe.ends[0], EPOLLIN, [&](std::uint32_t) {
        ++calls; // and reads nothing
        timers.push_back(loop.after(1h, [] {}));
    });
    bool came = false;
    const auto soon = loop.soon([&] { came = true; });

    EXPECT_TRUE(loop.runUntil([&] { return came || calls > 100; }));

    EXPECT_TRUE(came);
}

TEST(EventLoop, WhatIsUrgentComesFirstAndTheRestComesToo) {
    EventLoop loop;
    const Pipe urgent;
    const Pipe other;
    std::string order;
    const auto later = loop.watch(other.ends[0], EPOLLIN, [&](std::uint32_t) {
        other.read();
        order += "other ";
    });
    const auto first = loop.watchUrgently(urgent.ends[0], EPOLLIN, [&](std::uint32_t events) {
        EXPECT_EQ(events, EPOLLIN);
        urgent.read();
        order += "urgent ";
    });

    for (int i = 0; i < 2; ++i) {
        other.write();
        urgent.write();
        EXPECT_TRUE(loop.runUntil([&, end = order.size() + 13] { return order.size() == end; }));
    }

    EXPECT_EQ(order, "urgent other urgent other ");
}

TEST(EventLoop, OfTheUrgentOnesThatAreReadyTogetherTheFirstInRankComeFirst) {
    EventLoop loop;
    const Pipe usual;
    const Pipe first;
    std::string order;
    const auto a = loop.watchUrgently(usual.ends[0], EPOLLIN, [&](std::uint32_t) {
        usual.read();
        order += "usual ";
    });
    const auto b = loop.watchUrgently(
        first.ends[0], EPOLLIN,
        [&](std::uint32_t) {
            first.read();
            order += "first ";
        },
        EventLoop::Rank::First);
    usual.write();
    first.write();

    EXPECT_TRUE(loop.runUntil([&] { return order.size() == 12; }));

    EXPECT_EQ(order, "first usual ");
}

TEST(EventLoop, WhatIsUrgentAllTheTimeLeavesTheOthersAndTheTimersTheirTurn) {
    EventLoop loop;
    const Pipe urgent;
    const Pipe other;
    urgent.write();
    other.write();
    int calls = 0;
    const auto first = loop.watchUrgently(urgent.ends[0], EPOLLIN, [&](std::uint32_t) {
        if (++calls == 1000) urgent.read();
    });
    bool heard = false;
    const auto later = loop.watch(other.ends[0], EPOLLIN, [&](std::uint32_t) {
        other.read();
        heard = true;
    });
    bool came = false;
    const auto soon = loop.soon([&] { came = true; });

    EXPECT_TRUE(loop.runUntil([&] { return (heard && came) || calls == 1000; }));

    EXPECT_TRUE(heard);
    EXPECT_TRUE(came);
    EXPECT_LT(calls, 100);
}

TEST(EventLoop, AnUrgentWatchMayEndItselfAndMakeTimersAndOthers) {
    std::unique_ptr<EventLoop::Handle> outlives;
    {
        EventLoop loop;
        const Pipe pipe;
        EventLoop::Source timer;
        EventLoop::Source second;
        int heard = 0;
        EventLoop::Source watch = loop.watchUrgently(pipe.ends[0], EPOLLIN, [&](std::uint32_t) {
            pipe.read();
            timer = loop.after(1ms, [&] {
                second = loop.watchUrgently(pipe.ends[0], EPOLLIN, [&](std::uint32_t) {
                    pipe.read();
                    loop.quit(++heard);
                });
                pipe.write();
            });
            watch.reset();
        });
        pipe.write();

        EXPECT_EQ(loop.run(), 1);
        outlives = std::move(second);
    }
}

TEST(EventLoop, ASignalComesToItsCallback) {
    EventLoop loop;
    bool arrived = false;
    const auto signal = loop.onSignal(SIGUSR1, [&] { arrived = true; });

    ::raise(SIGUSR1);

    EXPECT_TRUE(loop.runUntil([&] { return arrived; }));
}

TEST(EventLoop, ADescriptorThatCannotBeWatchedIsNoEndOfTheProgram) {
    EventLoop loop;

    EXPECT_EQ(loop.watch(-1, EPOLLIN, [](std::uint32_t) {}), nullptr);
    EXPECT_EQ(loop.watchUrgently(-1, EPOLLIN, [](std::uint32_t) {}), nullptr);
}

TEST(EventLoop, SleepsWhileNothingHappens) {
    EventLoop loop;
    const Pipe pipe;
    const auto watch = loop.watch(pipe.ends[0], EPOLLIN, [](std::uint32_t) {});
    const Pipe urgent;
    const auto first = loop.watchUrgently(urgent.ends[0], EPOLLIN, [](std::uint32_t) {});
    const auto far = loop.after(1h, [] {});
    loop.runUntil([] { return false; }, 10ms);
    ::rusage before{};
    ::rusage after{};
    ::getrusage(RUSAGE_SELF, &before);

    loop.runUntil([] { return false; }, 200ms);

    ::getrusage(RUSAGE_SELF, &after);
    EXPECT_LE(after.ru_nvcsw - before.ru_nvcsw, 2);
}

} // namespace
