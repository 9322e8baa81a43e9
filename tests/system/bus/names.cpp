#include "tests/system/bus/BusTest.h"

namespace {

using NameState = seat::SessionBus::NameState;

class BusNames : public BusTest {
protected:
    void ask() {
        session().addName(name, [this](NameState state) { m_states.push_back(state); });
    }
    bool states(std::vector<NameState> expected) {
        return runUntil([&] { return m_states == expected; });
    }

    std::vector<NameState> m_states;
};

TEST_F(BusNames, AFreeNameIsOurs) {
    ask();

    ASSERT_TRUE(states({NameState::Owned}));
    EXPECT_TRUE(testing_support::BusPeer(bus.address()).nameHasOwner(name));
}

TEST_F(BusNames, AnEndedAskingFreesTheName) {
    const testing_support::BusPeer peer(bus.address());
    ask();
    ASSERT_TRUE(states({NameState::Owned}));

    session().removeName(name);

    EXPECT_TRUE(runUntil([&] { return !peer.nameHasOwner(name); }));
}

TEST_F(BusNames, AskingAndEndingAtOnceLeavesTheNameFree) {
    const testing_support::BusPeer peer(bus.address());
    ask();
    session().removeName(name);
    ASSERT_TRUE(connected());
    ask();
    session().removeName(name);

    EXPECT_TRUE(runUntil([] { return session().isFlushed(); }));
    EXPECT_TRUE(runUntil([&] { return !peer.nameHasOwner(name); }));
}

TEST_F(BusNames, ATakenNameIsWaitedForAndLogged) {
    const testing_support::BusPeer other(bus.address());
    ASSERT_TRUE(other.ownName(name));
    ask();
    ASSERT_TRUE(states({NameState::Taken}));
    EXPECT_EQ(1, other.ownersAndWaiting(name)) << "nobody waits in the bus's own queue";
    EXPECT_EQ(1u, m_log.count("name com.quorrel.jvn.bootstrap: another program has it"));

    other.giveUpName(name);

    EXPECT_TRUE(states({NameState::Taken, NameState::Owned}));
}

TEST_F(BusNames, ATakenNameThatIsNotWantedAnyMoreIsLeftWhenItIsFree) {
    const testing_support::BusPeer other(bus.address());
    ASSERT_TRUE(other.ownName(name));
    ask();
    ASSERT_TRUE(states({NameState::Taken}));
    session().removeName(name);

    other.giveUpName(name);

    bool answered = false;
    session().addName("com.quorrel.test.settled", [&](auto) { answered = true; });
    ASSERT_TRUE(runUntil([&] { return answered; }));
    EXPECT_FALSE(other.nameHasOwner(name));
    EXPECT_TRUE(states({NameState::Taken}));
}

TEST_F(BusNames, ANameThatAnotherTakesAgainAtOnceIsWaitedForOn) {
    const testing_support::BusPeer other(bus.address());
    const testing_support::BusPeer third(bus.address());
    ASSERT_TRUE(other.ownName(name));
    ask();
    ASSERT_TRUE(states({NameState::Taken}));

    other.giveUpName(name);
    ASSERT_TRUE(third.ownName(name)); // before we have heard of it
    third.giveUpName(name);

    EXPECT_TRUE(states({NameState::Taken, NameState::Owned}));
}

TEST_F(BusNames, NobodyTakesTheNameAway) {
    ask();
    ASSERT_TRUE(states({NameState::Owned}));

    EXPECT_FALSE(testing_support::BusPeer(bus.address()).ownName(name));
    EXPECT_TRUE(states({NameState::Owned}));
}

TEST_F(BusNames, WhatIsNoNameIsLogged) {
    session().addName("no name", nullptr);

    EXPECT_EQ(1u, m_log.count("no name: not a name for the bus"));
}

} // namespace
