#include "services/jvninputd/ListenerCount.h"

#include <gtest/gtest.h>

using namespace jvninputd;
using namespace std::chrono_literals;

namespace {

struct Nodes {
    ListenerCount count;
    Moment now{};

    void open() { count.opened(now); }
    void close() { count.closed(); }
    void pass(Duration time) {
        const Moment end = now + time;
        while (count.deadline() && *count.deadline() <= end) {
            now = *count.deadline();
            count.timePassed(now);
        }
        now = end;
    }
};

TEST(ListenerCount, AnOpenThatStaysListensAfterItsTime) {
    Nodes nodes;
    nodes.open();

    nodes.pass(199ms);
    EXPECT_FALSE(nodes.count.listening());
    nodes.pass(1ms);
    EXPECT_TRUE(nodes.count.listening());
    EXPECT_FALSE(nodes.count.deadline()) << "no timer runs while a game listens";

    nodes.close();
    EXPECT_FALSE(nodes.count.listening());
}

TEST(ListenerCount, ScansDoNotCountHoweverMany) {
    Nodes nodes;
    for (int scan = 0; scan < 100; ++scan) {
        nodes.open();
        nodes.pass(10ms);
        nodes.close();
        EXPECT_FALSE(nodes.count.listening());
        nodes.pass(5ms);
    }
    EXPECT_FALSE(nodes.count.deadline()) << "no timer runs after a scan";
}

TEST(ListenerCount, AScanDoesNotEndAListener) {
    Nodes nodes;
    nodes.open();
    nodes.pass(200ms);
    for (int scan = 0; scan < 50; ++scan) {
        nodes.open();
        nodes.pass(10ms);
        nodes.close();
        ASSERT_TRUE(nodes.count.listening());
    }
    nodes.close();
    EXPECT_FALSE(nodes.count.listening());
}

TEST(ListenerCount, AListenerThatComesDuringScansIsSeen) {
    Nodes nodes;
    nodes.open();
    nodes.pass(5ms);
    nodes.open(); // the game
    nodes.pass(5ms);
    nodes.close();
    nodes.pass(200ms);

    EXPECT_TRUE(nodes.count.listening());
}

TEST(ListenerCount, TheSecondListenerKeepsItListening) {
    Nodes nodes;
    nodes.open();
    nodes.pass(1s);
    nodes.open();
    nodes.pass(1s);

    nodes.close();
    EXPECT_TRUE(nodes.count.listening());
    nodes.close();
    EXPECT_FALSE(nodes.count.listening());
}

TEST(ListenerCount, AScanThatOutlastsTheGameDoesNotListen) {
    Nodes nodes;
    nodes.open();
    nodes.pass(1s);
    nodes.open();
    nodes.pass(10ms);
    nodes.close();
    nodes.pass(10ms);
    nodes.close();

    EXPECT_FALSE(nodes.count.listening());
    EXPECT_FALSE(nodes.count.deadline());
}

TEST(ListenerCount, AClosingOfWhatWasOpenedBeforeIsIgnored) {
    Nodes nodes;
    nodes.close();
    nodes.open();
    nodes.pass(200ms);

    EXPECT_TRUE(nodes.count.listening());
}

TEST(ListenerCount, ResetForgetsEverybody) {
    Nodes nodes;
    nodes.open();
    nodes.pass(1s);
    nodes.open();

    nodes.count.reset();
    EXPECT_FALSE(nodes.count.listening());
    EXPECT_FALSE(nodes.count.deadline());
}

} // namespace
