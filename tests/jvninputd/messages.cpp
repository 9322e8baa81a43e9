#include "tests/jvninputd/ConnectionsTest.h"

using namespace jvninputd;
using namespace std::chrono_literals;

namespace {

using Messages = ConnectionsTest;

TEST_F(Messages, AnotherVersionIsRefusedWithOurs) {
    Peer peer = connect();
    auto hello = input::makeMessage<input::Hello>();
    hello.header.version = input::protocolVersion + 1;
    hello.role = input::Role::govern;
    peer.send(hello);
    settle();

    const auto refused = peer.receive<input::Refused>();
    ASSERT_TRUE(refused);
    EXPECT_EQ(refused->reason, input::RefusalReason::version);
    EXPECT_EQ(refused->header.version, input::protocolVersion);
    EXPECT_TRUE(peer.closed());
}

TEST_F(Messages, SettingsBeforeHelloAreRefused) {
    Peer peer = connect();
    peer.send(someSettings());
    settle();

    EXPECT_EQ(peer.refusal(), input::RefusalReason::malformed);
}

TEST_F(Messages, ASecondHelloIsRefused) {
    Peer peer = connect(input::Role::govern);
    peer.hello(input::Role::govern);
    settle();

    EXPECT_EQ(peer.refusal(), input::RefusalReason::malformed);
}

TEST_F(Messages, EveryCutAndEveryExcessIsRefused) {
    struct {
        input::Settings settings = someSettings();
        char more[100] = {};
    } message;
    for (std::size_t size = 1; size <= sizeof message; size += size < 32 ? 1 : 37) {
        Peer peer = connect(input::Role::govern);
        peer.sendBytes(&message, size);
        settle();
        ASSERT_EQ(peer.refusal(), input::RefusalReason::malformed) << size;
        ASSERT_TRUE(peer.closed());
    }
    EXPECT_FALSE(m_settings);
}

TEST_F(Messages, ValuesThatAreNotListedAreRefused) {
    std::vector<input::Settings> bad(4, someSettings());
    bad[0].keyboardPlays = 2;
    bad[1].mode = static_cast<input::PlayMode>(2);
    bad[2].forceExtended = 0xff;
    bad[3].bindingCount = input::maximumBindings + 1;
    for (const input::Settings& settings : bad) {
        Peer peer = connect(input::Role::govern);
        peer.send(settings);
        settle();
        ASSERT_EQ(peer.refusal(), input::RefusalReason::malformed);
    }
    for (const int role : {0, 5, 255}) {
        Peer peer = connect();
        peer.hello(static_cast<input::Role>(role));
        settle();
        ASSERT_EQ(peer.refusal(), input::RefusalReason::malformed);
    }
    EXPECT_FALSE(m_settings);
}

// A later version may give them a meaning that this one does not know.
TEST_F(Messages, ReservedBytesThatAreNotZeroAreRefused) {
    Peer unknown = connect();
    auto hello = input::makeMessage<input::Hello>();
    hello.role = input::Role::govern;
    hello.reserved[2] = 1;
    unknown.send(hello);
    settle();
    EXPECT_EQ(unknown.refusal(), input::RefusalReason::malformed);

    Peer player = connect(input::Role::govern);
    auto settings = someSettings();
    settings.reserved = 1;
    player.send(settings);
    settle();
    EXPECT_EQ(player.refusal(), input::RefusalReason::malformed);

    Peer lighter = connect(input::Role::govern);
    auto light = input::makeMessage<input::Light>();
    light.reserved[1] = 1;
    lighter.send(light);
    settle();
    EXPECT_EQ(lighter.refusal(), input::RefusalReason::malformed);
}

TEST_F(Messages, WhoSendsWithoutEndIsClosed) {
    Peer peer = connect(input::Role::govern);
    for (int i = 0; i < 400; ++i) {
        peer.send(someSettings());
        run();
    }
    settle();

    EXPECT_EQ(peer.refusal(), input::RefusalReason::tooManyMessages);
}

TEST_F(Messages, ADraggedColourIsNotTooMuch) {
    Peer peer = connect(input::Role::govern);
    auto light = input::makeMessage<input::Light>();
    for (int i = 0; i < 60 * 30; ++i) {
        peer.send(light);
        m_clock.advance(m_loop, 16667us);
        run();
    }
    settle();

    EXPECT_FALSE(peer.closed());
}

} // namespace
