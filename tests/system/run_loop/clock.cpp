#include "kit/seat.h"

#include "kit/dispatch/ManualClock.h"
#include "kit/dispatch/run_loop_sources.h"
#include "platform/foundation/time.h"

#include <cmath>
#include <gtest/gtest.h>
#include <string>

namespace {

TEST(Clock, MediaTimeNeverGoesBack) {
    const double before = platform::CACurrentMediaTime();

    EXPECT_GE(platform::CACurrentMediaTime(), before);
    EXPECT_FALSE(seat::clockIsHeld());
}

TEST(Clock, TimeOfDayIsTheSystems) {
    platform::timeval now;

    EXPECT_EQ(platform::gettimeofday(&now), 0);

    EXPECT_LE(std::abs(now.tv_sec - ::time(nullptr)), 1);
    EXPECT_GE(now.tv_usec, 0);
    EXPECT_LT(now.tv_usec, 1'000'000);
    EXPECT_EQ(platform::gettimeofday(nullptr), 0);
}

TEST(Clock, HeldClockStandsStillUntilItIsMoved) {
    seat::ManualClock clock;
    const double start = platform::CACurrentMediaTime();
    platform::timeval first;
    platform::gettimeofday(&first);
    EXPECT_EQ(platform::CACurrentMediaTime(), start);

    clock.advance(1.25);

    platform::timeval second;
    platform::gettimeofday(&second);
    EXPECT_TRUE(seat::clockIsHeld());
    EXPECT_EQ(platform::CACurrentMediaTime(), start + 1.25);
    EXPECT_EQ(second.tv_sec, first.tv_sec + 1);
    EXPECT_EQ(second.tv_usec, first.tv_usec + 250'000);
}

TEST(Clock, TimeOfDayMayGoBackWhileMediaTimeDoesNot) {
    seat::ManualClock clock;
    const double start = platform::CACurrentMediaTime();

    clock.setTimeOfDay({12, 999'999});

    platform::timeval now;
    platform::gettimeofday(&now);
    EXPECT_EQ(now.tv_sec, 12);
    EXPECT_EQ(now.tv_usec, 999'999);
    EXPECT_EQ(platform::CACurrentMediaTime(), start);
}

TEST(Clock, AdvancingFiresTheTimersOnTheWayEachAtItsTime) {
    seat::ManualClock clock;
    const double start = clock.mediaTime();
    std::string events;
    const auto note = [&](const std::string& name) {
        events += name + "@" + std::to_string(static_cast<int>(std::lround((clock.mediaTime() - start) * 10))) + " ";
    };
    seat::addTimer(0.3, [&] { note("late"); });
    seat::addTimer(0.1, [&] {
        note("early");
        seat::addTimer(0.1, [&] { note("chained"); });
    });
    const auto removed = seat::addTimer(0.2, [&] { note("removed"); });
    seat::removeSource(removed);

    clock.advance(0.05);
    EXPECT_EQ(events, "");
    clock.advance(1);

    EXPECT_EQ(events, "early@1 chained@2 late@3 ");
    EXPECT_FALSE(seat::nextTimerDeadline());
}

} // namespace
