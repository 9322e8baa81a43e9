#include "system/bus/EventSet.h"

#include "kit/dispatch/ManualClock.h"
#include "system/run_loop/PollLoop.h"
#include "tests/support/descriptors.h"

#include <gtest/gtest.h>
#include <sys/epoll.h>
#include <unistd.h>

namespace {

using seat::EventSet;
using namespace std::chrono_literals;

class EventSetTest : public ::testing::Test {
protected:
    EventSetTest() { EXPECT_EQ(0, ::pipe(m_pipe)); }
    ~EventSetTest() override {
        ::close(m_pipe[0]);
        ::close(m_pipe[1]);
    }

    seat::PollLoop m_loop;
    int m_pipe[2] = {-1, -1};
};

TEST_F(EventSetTest, AWritableDescriptorIsHeardOf) {
    EventSet set;
    std::uint32_t heard = 0;
    set.watch(m_pipe[1], EPOLLOUT, [&](std::uint32_t events) { heard = events; });

    EXPECT_TRUE(m_loop.runUntil([&] { return heard == EPOLLOUT; }));
}

TEST_F(EventSetTest, ACallbackMayRemoveItself) {
    EventSet set;
    int calls = 0;
    EventSet::Token token = 0;
    token = set.watch(m_pipe[1], EPOLLOUT, [&](std::uint32_t) {
        ++calls;
        set.remove(token);
    });

    for (int i = 0; i < 3; ++i) m_loop.runReady();

    EXPECT_EQ(1, calls);
}

TEST_F(EventSetTest, ATimerRunsThoughTheHostClockIsHeld) {
    const seat::ManualClock held;
    EventSet set;
    int once = 0;
    int repeated = 0;
    set.addTimer(1ms, EventSet::Timer::Once, [&] { ++once; });
    set.addTimer(1ms, EventSet::Timer::Repeating, [&] { ++repeated; });

    EXPECT_TRUE(m_loop.runUntil([&] { return repeated >= 3; }));
    EXPECT_EQ(1, once);
}

TEST_F(EventSetTest, WhatIsRemovedIsNotHeardOf) {
    EventSet set;
    int removed = 0;
    int kept = 0;
    set.remove(set.addTimer(1ms, EventSet::Timer::Once, [&] { ++removed; }));
    set.addTimer(2ms, EventSet::Timer::Once, [&] { ++kept; });

    EXPECT_TRUE(m_loop.runUntil([&] { return kept == 1; }));
    EXPECT_EQ(0, removed);
}

TEST_F(EventSetTest, NoDescriptorIsLeftOpen) {
    const auto before = testing_support::openDescriptors();
    for (int i = 0; i < 10; ++i) {
        EventSet set;
        set.addTimer(1h, EventSet::Timer::Once, [] {});
    }
    EXPECT_EQ(before, testing_support::openDescriptors());
}

} // namespace
