#include "tests/jvninputd/ConnectionsTest.h"

#include <filesystem>

using namespace jvninputd;
using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

namespace {

using Connections = ConnectionsTest;

TEST_F(Connections, AUserHasOneListenerBesideTheObservers) {
    Peer first = connect(input::Role::observe);
    Peer second = connect(input::Role::observe);
    Peer listener = connect(input::Role::listen);
    EXPECT_FALSE(listener.refusal());

    Peer another = connect(input::Role::listen);

    EXPECT_EQ(another.refusal(), input::RefusalReason::roleTaken);
    listener.send(someSettings());
    settle();
    EXPECT_EQ(listener.refusal(), input::RefusalReason::malformed) << "it may say nothing";
}

TEST_F(Connections, AGovernorSaysWhatPlaysAndHowControllersAreLit) {
    Peer peer = connect(input::Role::govern);
    peer.send(someSettings());
    auto light = input::makeMessage<input::Light>();
    light.action = input::LightAction::set;
    peer.send(light);
    settle();
    peer.close();
    settle();

    EXPECT_THAT(m_calls, ElementsAre("not empty", "joined", "settings", "light", "left", "empty"));
    ASSERT_TRUE(m_settings);
    EXPECT_EQ(m_settings->bindings[0].nativeCode, 3);
    EXPECT_THAT(m_log, IsEmpty());
}

TEST_F(Connections, WhoIsNotPermittedIsRefusedAndLoggedOnce) {
    m_permitted = false;
    for (int i = 0; i < 1000; ++i) {
        Peer peer = connect(input::Role::observe);
        ASSERT_EQ(peer.refusal(), input::RefusalReason::notPermitted);
        ASSERT_TRUE(peer.closed());
    }
    settle();
    EXPECT_THAT(m_server.clients(), IsEmpty());
    EXPECT_THAT(m_log, SizeIs(1));
}

TEST_F(Connections, WhoIsNoLongerPermittedIsRefused) {
    Peer peer = connect(input::Role::govern);
    m_permitted = false;
    m_server.checkPermissions();
    settle();

    EXPECT_EQ(peer.refusal(), input::RefusalReason::notPermitted);
    EXPECT_THAT(m_calls, ElementsAre("not empty", "joined", "left", "empty"));
}

TEST_F(Connections, AUserHasOneGovernorAndTwoObservers) {
    Peer governor = connect(input::Role::govern);
    EXPECT_EQ(connect(input::Role::govern).refusal(), input::RefusalReason::roleTaken);
    Peer observer = connect(input::Role::observe);
    Peer trial = connect(input::Role::tryOut);
    EXPECT_EQ(connect(input::Role::tryOut).refusal(), input::RefusalReason::roleTaken);
    EXPECT_EQ(connect(input::Role::observe).refusal(), input::RefusalReason::roleTaken);
    EXPECT_FALSE(governor.closed() || observer.closed() || trial.closed());

    governor.close();
    settle();
    EXPECT_FALSE(connect(input::Role::govern).closed()) << "the place is free again";
}

TEST_F(Connections, AnObserverMayNotSaySettings) {
    Peer peer = connect(input::Role::observe);
    peer.send(someSettings());
    settle();

    EXPECT_EQ(peer.refusal(), input::RefusalReason::malformed);
    EXPECT_FALSE(m_settings);
}

TEST_F(Connections, OneThatTriesMayNotLight) {
    Peer peer = connect(input::Role::tryOut);
    peer.send(input::makeMessage<input::Light>());
    settle();

    EXPECT_EQ(peer.refusal(), input::RefusalReason::malformed);
}

TEST_F(Connections, SilenceBeforeHelloIsClosedAfterFiveSeconds) {
    Peer silent = connect();
    Peer observer = connect(input::Role::observe);
    m_clock.advance(m_loop, 4999ms);
    EXPECT_FALSE(silent.closed());
    m_clock.advance(m_loop, 1ms);
    settle();

    EXPECT_TRUE(silent.closed());
    EXPECT_FALSE(observer.closed());
    EXPECT_FALSE(m_loop.nextTimer()) << "nothing wakes the program while everybody is quiet";
}

TEST_F(Connections, AUserMayNotHoldMoreThanEight) {
    std::vector<Peer> peers;
    for (int i = 0; i < 8; ++i) peers.push_back(connect());
    EXPECT_EQ(connect().refusal(), input::RefusalReason::busy);
    EXPECT_THAT(m_server.clients(), SizeIs(::testing::Le(9)));

    peers.clear();
    settle();
    EXPECT_FALSE(connect(input::Role::govern).closed());
}

TEST_F(Connections, AStateIsSentOnceAndAgainWhenItChanges) {
    Peer peer = connect(input::Role::observe);
    auto state = input::makeMessage<input::State>();
    Client& client = *m_server.clients().front();
    client.show(state);
    client.show(state);
    state.inputs = 8;
    client.show(state);

    EXPECT_EQ(peer.receive<input::State>()->inputs, 0U);
    EXPECT_EQ(peer.receive<input::State>()->inputs, 8U);
    EXPECT_FALSE(peer.receive<input::State>());
}

TEST_F(Connections, WhoReadsSlowlyGetsTheLatestStateAndNobodyWaits) {
    Peer peer = connect(input::Role::observe);
    Client& client = *m_server.clients().front();
    auto state = input::makeMessage<input::State>();
    for (std::uint32_t i = 1; i <= 100'000; ++i) {
        state.inputs = i;
        client.show(state);
    }

    std::uint32_t last = 0;
    std::uint32_t count = 0;
    for (int round = 0; round < 10; ++round) {
        while (const auto received = peer.receive<input::State>()) {
            EXPECT_GT(received->inputs, last);
            last = received->inputs;
            ++count;
        }
        settle();
    }
    EXPECT_THAT(m_log, IsEmpty());
    EXPECT_EQ(last, 100'000U);
    EXPECT_LT(count, 10'000U);
}

TEST_F(Connections, AThousandThatComeAndGoLeaveNothing) {
    const auto descriptors = [] {
        return std::distance(std::filesystem::directory_iterator("/proc/self/fd"),
                             std::filesystem::directory_iterator());
    };
    settle();
    const auto before = descriptors();
    for (int i = 0; i < 1000; ++i) {
        Peer peer(m_path);
        if (i % 3) peer.hello(static_cast<input::Role>(i % 5));
        if (i % 10 == 0) settle();
    }
    settle();
    while (!m_server.clients().empty()) settle();

    EXPECT_EQ(descriptors(), before);
    EXPECT_EQ(m_calls.back(), "empty");
}

} // namespace
