#include "services/common/log.h"
#include "services/jvninputd/Server.h"
#include "services/jvninputd/listening_socket.h"
#include "tests/support/HeldClock.h"
#include "tests/support/TemporaryFolder.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <vector>

using namespace jvninputd;
using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

namespace {

// A program that connects. What it is sent it keeps until it is asked for.
class Peer {
public:
    explicit Peer(const std::string& path) : m_socket(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0)) {
        ::sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::memcpy(address.sun_path, path.c_str(), path.size());
        EXPECT_EQ(::connect(m_socket.get(), reinterpret_cast<::sockaddr*>(&address), sizeof address), 0)
            << std::strerror(errno);
    }

    template <class Message> void send(const Message& message) { sendBytes(&message, sizeof message); }
    void sendBytes(const void* data, std::size_t size) const { ::send(m_socket.get(), data, size, MSG_NOSIGNAL); }
    void hello(input::Role role) {
        auto message = input::makeMessage<input::Hello>();
        message.role = role;
        send(message);
    }

    // The next message of this kind, those before it skipped; nothing when there is none (any more).
    template <class Message> std::optional<Message> receive() const {
        char buffer[2 * input::maximumMessageSize];
        for (;;) {
            const ssize_t size = ::recv(m_socket.get(), buffer, sizeof buffer, MSG_DONTWAIT);
            if (size <= 0) return std::nullopt;
            if (const auto message = input::messageFrom<Message>(buffer, static_cast<std::size_t>(size)))
                return message;
        }
    }
    std::optional<input::RefusalReason> refusal() const {
        const auto message = receive<input::Refused>();
        return message ? std::optional(message->reason) : std::nullopt;
    }
    // Whether the other side has closed; what was sent before is skipped.
    bool closed() const {
        char buffer[2 * input::maximumMessageSize];
        for (;;) {
            const ssize_t size = ::recv(m_socket.get(), buffer, sizeof buffer, MSG_DONTWAIT);
            if (size <= 0) return size == 0 || errno != EAGAIN;
        }
    }
    void close() { m_socket.reset(); }

private:
    seat::Descriptor m_socket;
};

class Connections : public ::testing::Test {
protected:
    Connections() {
        services::setLogSink([this](std::string_view line) { m_log.emplace_back(line); });
    }
    ~Connections() override { services::setLogSink({}); }

    Peer connect() {
        Peer peer(m_path);
        settle();
        return peer;
    }
    Peer connect(input::Role role) {
        Peer peer = connect();
        peer.hello(role);
        settle();
        return peer;
    }
    // Until everything that was sent is dealt with.
    void settle() {
        for (int i = 0; i < 20; ++i) run();
    }
    void run() {
        bool ran = false;
        const auto marker = m_loop.soon([&ran] { ran = true; });
        m_loop.runUntil([&ran] { return ran; });
    }

    testing_support::TemporaryFolder m_folder;
    std::string m_path = m_folder.file("socket");
    testing_support::HeldClock m_clock;
    services::EventLoop m_loop{m_clock};
    std::vector<std::string> m_log;
    bool m_permitted = true;
    std::vector<std::string> m_calls;
    std::optional<input::Settings> m_settings;
    Server m_server{m_loop,
                    listeningSocket(m_path),
                    {[this](uid_t) { return m_permitted; }, [this](Client&) { m_calls.emplace_back("joined"); },
                     [this](Client& client) {
                         m_calls.emplace_back("settings");
                         m_settings = client.settings();
                     },
                     [this](Client&) { m_calls.emplace_back("light"); },
                     [this](Client&) { m_calls.emplace_back("left"); },
                     [this](bool isEmpty) { m_calls.emplace_back(isEmpty ? "empty" : "not empty"); }}};
};

input::Settings someSettings() {
    auto settings = input::makeMessage<input::Settings>();
    settings.keyboardPlays = 1;
    settings.bindingCount = 1;
    settings.bindings[0] = {26, 3};
    return settings;
}

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

TEST_F(Connections, AnotherVersionIsRefusedWithOurs) {
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

TEST_F(Connections, SettingsBeforeHelloAreRefused) {
    Peer peer = connect();
    peer.send(someSettings());
    settle();

    EXPECT_EQ(peer.refusal(), input::RefusalReason::malformed);
}

TEST_F(Connections, ASecondHelloIsRefused) {
    Peer peer = connect(input::Role::govern);
    peer.hello(input::Role::govern);
    settle();

    EXPECT_EQ(peer.refusal(), input::RefusalReason::malformed);
}

TEST_F(Connections, EveryCutAndEveryExcessIsRefused) {
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

TEST_F(Connections, ValuesThatAreNotListedAreRefused) {
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
TEST_F(Connections, ReservedBytesThatAreNotZeroAreRefused) {
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

TEST_F(Connections, WhoSendsWithoutEndIsClosed) {
    Peer peer = connect(input::Role::govern);
    for (int i = 0; i < 400; ++i) {
        peer.send(someSettings());
        run();
    }
    settle();

    EXPECT_EQ(peer.refusal(), input::RefusalReason::tooManyMessages);
}

TEST_F(Connections, ADraggedColourIsNotTooMuch) {
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
