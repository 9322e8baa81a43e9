#include "services/jvnd/ControlServer.h"

#include "services/common/log.h"
#include "tests/support/HeldClock.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/descriptors.h"

#include <cstring>
#include <gtest/gtest.h>
#include <set>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace jvnd;
using namespace std::chrono_literals;
using Bytes = std::vector<std::uint8_t>;

namespace {

// Answers each query, waits with each connect, closes on everything else.
class Handler final : public CommandHandler {
public:
    Then handle(Caller& caller, const JVNControlFrame& frame) override {
        ++frames;
        last = &caller;
        if (frame.command == JVNControlCommand::QueryConnection) {
            caller.reply({.command = frame.command, .controllerType = 1});
            return Then::GoOn;
        }
        if (frame.command != JVNControlCommand::Connect) return Then::Close;
        waiting.insert(&caller);
        return Then::GoOn;
    }
    void callerGone(Caller& caller) override {
        ++gone;
        waiting.erase(&caller);
    }
    bool isWaiting(const Caller& caller) const override { return waiting.contains(&caller); }

    int frames = 0;
    int gone = 0;
    Caller* last = nullptr;
    std::set<const Caller*> waiting;
};

class ControlServerTest : public ::testing::Test {
protected:
    ControlServerTest() {
        services::setLogSink([this](std::string_view line) { log += std::string(line) + "\n"; });
        ::chmod(folder.path().c_str(), 0711);
        listener = seat::Descriptor(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
        EXPECT_EQ(::bind(listener.get(), address(), sizeof m_address), 0);
        ::chmod(m_address.sun_path, 0666);
        EXPECT_EQ(::listen(listener.get(), 64), 0);
        server.listen(listener.get());
    }
    ~ControlServerTest() override { services::setLogSink({}); }

    const ::sockaddr* address() {
        m_address.sun_family = AF_UNIX;
        folder.file("socket").copy(m_address.sun_path, sizeof m_address.sun_path - 1);
        return reinterpret_cast<const ::sockaddr*>(&m_address);
    }
    seat::Descriptor connect() {
        seat::Descriptor caller(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
        EXPECT_EQ(::connect(caller.get(), address(), sizeof m_address), 0);
        return caller;
    }
    seat::Descriptor accepted() {
        auto caller = connect();
        const auto count = server.connectionCount();
        EXPECT_TRUE(loop.runUntil([&] { return server.connectionCount() > count; }));
        return caller;
    }
    static void send(const seat::Descriptor& caller, const Bytes& bytes) {
        EXPECT_EQ(::send(caller.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL), static_cast<ssize_t>(bytes.size()));
    }
    static Bytes frame(JVNControlCommand command) {
        Bytes bytes(JVNControlFrameSize(command));
        const auto code = static_cast<std::uint32_t>(command);
        std::memcpy(bytes.data(), &code, sizeof code);
        return bytes;
    }
    // What has come by now: so many bytes, or "closed".
    static std::string received(const seat::Descriptor& caller) {
        char bytes[4096];
        const auto got = ::recv(caller.get(), bytes, sizeof bytes, MSG_DONTWAIT);
        return got > 0 ? std::to_string(got) : got == 0 || errno == ECONNRESET ? "closed" : "nothing";
    }
    bool waitUntilClosed(const seat::Descriptor& caller) {
        return loop.runUntil([&] { return received(caller) == "closed"; });
    }

    std::string log;
    testing_support::TemporaryFolder folder;
    testing_support::HeldClock clock;
    services::EventLoop loop{clock};
    Handler handler;
    seat::Descriptor listener;
    ControlServer server{loop, handler};

private:
    ::sockaddr_un m_address{};
};

TEST_F(ControlServerTest, FramesAreAnsweredInOneGoOrByteByByte) {
    const auto caller = accepted();
    auto bytes = frame(JVNControlCommand::QueryConnection);
    send(caller, bytes);
    ASSERT_TRUE(loop.runUntil([&] { return handler.frames == 1; }));
    EXPECT_EQ(received(caller), "12");

    for (const auto byte : bytes) {
        EXPECT_EQ(received(caller), "nothing");
        send(caller, {byte});
        loop.runUntil([] { return false; }, 1ms);
    }

    EXPECT_EQ(received(caller), "12");
}

TEST_F(ControlServerTest, ACallerThatCloses_OrSendsWhatIsNoCommand_IsDone) {
    const auto nonsense = accepted();
    send(nonsense, {2, 0, 0, 0});
    EXPECT_TRUE(waitUntilClosed(nonsense));

    auto closing = accepted();
    send(closing, {5, 0, 0});
    closing.reset();

    EXPECT_TRUE(loop.runUntil([&] { return server.connectionCount() == 0; }));
    EXPECT_EQ(handler.frames, 0);
    EXPECT_EQ(handler.gone, 2);
}

TEST_F(ControlServerTest, WhatFollowsTheFrameThatClosesIsNotLookedAt) {
    const auto caller = accepted();
    auto bytes = frame(JVNControlCommand::EndSession);
    const auto more = frame(JVNControlCommand::QueryConnection);
    bytes.insert(bytes.end(), more.begin(), more.end());
    send(caller, bytes);
    EXPECT_TRUE(waitUntilClosed(caller));
    EXPECT_EQ(handler.frames, 1);
}

TEST_F(ControlServerTest, ACallerThatIsSilentForFiveSecondsIsClosed) {
    const auto caller = accepted();
    clock.advance(loop, 3s);
    send(caller, {5, 0, 0});
    loop.runUntil([] { return false; }, 1ms);
    clock.advance(loop, 2s - 1us);
    EXPECT_EQ(server.connectionCount(), 1u);

    clock.advance(loop, 1us);

    EXPECT_EQ(server.connectionCount(), 0u) << "a part of a frame counts for nothing";
    EXPECT_FALSE(loop.nextTimer());
}

TEST_F(ControlServerTest, EachWholeFrameGivesFiveSecondsMore) {
    const auto caller = accepted();
    clock.advance(loop, 4s);
    send(caller, frame(JVNControlCommand::QueryConnection));
    ASSERT_TRUE(loop.runUntil([&] { return handler.frames == 1; }));

    clock.advance(loop, 5s - 1us);
    EXPECT_EQ(server.connectionCount(), 1u);
    clock.advance(loop, 1us);

    EXPECT_EQ(server.connectionCount(), 0u);
}

TEST_F(ControlServerTest, WhoWaitsForAConnectMayBeSilentUntilItIsAnswered) {
    const auto caller = accepted();
    send(caller, frame(JVNControlCommand::Connect));
    ASSERT_TRUE(loop.runUntil([&] { return handler.frames == 1; }));
    clock.advance(loop, 18s);
    EXPECT_EQ(server.connectionCount(), 1u);

    handler.waiting.clear();
    handler.last->reply({.command = JVNControlCommand::ConnectAccepted});
    clock.advance(loop, 5s - 1us);
    EXPECT_EQ(server.connectionCount(), 1u);
    clock.advance(loop, 1us);

    EXPECT_EQ(server.connectionCount(), 0u);
}

TEST_F(ControlServerTest, SixteenAreServedAndTheSeventeenthIsClosedAtOnce) {
    std::vector<seat::Descriptor> callers;
    for (int i = 0; i < 16; ++i) callers.push_back(accepted());
    auto seventeenth = connect();
    EXPECT_TRUE(waitUntilClosed(seventeenth));
    EXPECT_NE(log.find("more than 16 connections at once"), std::string::npos);

    callers.front().reset();
    ASSERT_TRUE(loop.runUntil([&] { return server.connectionCount() == 15; }));
    const auto next = accepted();
    send(next, frame(JVNControlCommand::QueryConnection));
    EXPECT_TRUE(loop.runUntil([&] { return handler.frames == 1; }));
    EXPECT_EQ(received(next), "12");
}

TEST_F(ControlServerTest, ACallerThatReadsNothingIsNotReadFromUntilItDoes) {
    const auto caller = accepted();
    const auto query = frame(JVNControlCommand::QueryConnection);
    int sent = 0;
    // Until both ends are full, so that nothing moves any more.
    for (int still = 0; still < 20;) {
        const bool isTaken = ::send(caller.get(), query.data(), query.size(), MSG_NOSIGNAL) == 12;
        sent += isTaken;
        still = isTaken ? 0 : still + 1;
        loop.runUntil([] { return false; }, 1ms);
    }
    EXPECT_LT(handler.frames, sent);

    int bytes = 0;
    ASSERT_TRUE(loop.runUntil([&] {
        char buffer[4096];
        for (ssize_t got = 0; (got = ::recv(caller.get(), buffer, sizeof buffer, MSG_DONTWAIT)) > 0;)
            bytes += static_cast<int>(got);
        return bytes == 12 * sent;
    }));
    EXPECT_EQ(handler.frames, sent);
}

TEST_F(ControlServerTest, OneThatFloodsLeavesOthersTheirTurn) {
    const auto flooding = accepted();
    const auto other = accepted();
    Bytes flood;
    for (int i = 0; i < 1000; ++i) {
        const auto connect = frame(JVNControlCommand::Connect); // needs no answer
        flood.insert(flood.end(), connect.begin(), connect.end());
    }
    send(flooding, flood);
    send(other, frame(JVNControlCommand::QueryConnection));

    EXPECT_TRUE(loop.runUntil([&] { return received(other) == "12"; }));

    EXPECT_LT(handler.frames, 1000);
}

TEST_F(ControlServerTest, AnotherUsersConnectionIsClosedUnread) {
    if (::geteuid() != 0) GTEST_SKIP() << "needs root, to be somebody else";
    const auto where = address();
    const ::pid_t child = ::fork();
    if (child == 0) {
        if (::setuid(65534) != 0) ::_exit(3);
        const int caller = ::socket(AF_UNIX, SOCK_STREAM, 0);
        if (::connect(caller, where, sizeof(::sockaddr_un)) != 0) ::_exit(4);
        const auto query = frame(JVNControlCommand::QueryConnection);
        ::send(caller, query.data(), query.size(), MSG_NOSIGNAL);
        char byte = 0;
        ::_exit(::recv(caller, &byte, 1, 0) > 0 ? 5 : 0);
    }
    int status = -1;
    while (::waitpid(child, &status, WNOHANG) == 0) loop.runUntil([] { return false; }, 1ms);
    EXPECT_EQ(WEXITSTATUS(status), 0);
    EXPECT_EQ(handler.frames, 0);
    EXPECT_NE(log.find("another user's connection is refused"), std::string::npos);
}

TEST_F(ControlServerTest, NothingIsLeftOfAThousandCallers) {
    const auto descriptors = testing_support::openDescriptors();
    for (int i = 0; i < 1000; ++i) {
        auto caller = accepted();
        if (i % 3 == 0) send(caller, frame(JVNControlCommand::Connect));
        if (i % 3 == 1) send(caller, {1, 0, 0, 0, 9});
        caller.reset();
        ASSERT_TRUE(loop.runUntil([&] { return server.connectionCount() == 0; }));
    }
    EXPECT_EQ(testing_support::openDescriptors(), descriptors);
    EXPECT_TRUE(handler.waiting.empty());
    EXPECT_FALSE(loop.nextTimer());
}

TEST_F(ControlServerTest, ItIsSaidWhenTheFirstComesAndTheLastGoes) {
    std::string changes;
    server.onBusyChanged([&] { changes += std::to_string(server.connectionCount()); });
    auto first = accepted();
    auto second = accepted();
    first.reset();
    second.reset();
    ASSERT_TRUE(loop.runUntil([&] { return server.connectionCount() == 0; }));
    EXPECT_EQ(changes, "10");
}

} // namespace
