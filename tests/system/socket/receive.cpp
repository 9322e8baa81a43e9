#include "system/socket/connection_listener.h"
#include "tests/system/socket/SocketTest.h"

#include <csignal>
#include <numeric>
#include <poll.h>
#include <string>
#include <sys/time.h>
#include <thread>
#include <vector>

namespace {

using testing_support::Bytes;
using testing_support::ScriptedDaemon;

constexpr std::size_t replySize = 12;

Bytes reply() {
    Bytes bytes(replySize);
    std::iota(bytes.begin(), bytes.end(), std::uint8_t(8));
    return bytes;
}

class SocketReceive : public SocketTest {
protected:
    struct Received {
        std::ptrdiff_t result;
        Bytes bytes;
        double milliseconds;
    };
    static Received receive(int descriptor, int flags = platform::MSG_WAITALL_FLAG) {
        Received received{0, Bytes(replySize), 0};
        const auto start = Clock::now();
        received.result = platform::recv(descriptor, received.bytes.data(), replySize, flags);
        received.milliseconds = millisecondsSince(start);
        return received;
    }
};

TEST_F(SocketReceive, AllSplitsOfAReplyGiveTheWholeReply) {
    for (std::size_t split = 0; split <= replySize; ++split) {
        const ScriptedDaemon daemon(m_folder.path(), [split](auto& peer) {
            const Bytes whole = reply();
            const auto at = whole.begin() + static_cast<std::ptrdiff_t>(split);
            peer.read(1); // so that the receiver waits already
            if (split > 0) peer.write(Bytes(whole.begin(), at));
            std::this_thread::yield();
            if (split < replySize) peer.write(Bytes(at, whole.end()));
        });
        const int descriptor = connected();
        setTimeout(descriptor, 20, 0);
        platform::send(descriptor, "?", 1, 0);

        const auto received = receive(descriptor);

        EXPECT_EQ(12, received.result) << split;
        EXPECT_EQ(reply(), received.bytes);
        platform::close(descriptor);
    }
}

TEST_F(SocketReceive, AReplyByteByByteIsWhole) {
    const ScriptedDaemon daemon(m_folder.path(), [](auto& peer) { peer.writeByteByByte(reply()); });
    const int descriptor = connected();

    EXPECT_EQ(12, receive(descriptor).result);

    platform::close(descriptor);
}

TEST_F(SocketReceive, APeerThatClosesEarlyGivesWhatCame) {
    for (std::size_t count = 0; count < replySize; ++count) {
        const ScriptedDaemon daemon(m_folder.path(), [count](auto& peer) {
            const Bytes whole = reply();
            peer.write(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(count)));
            peer.close();
        });
        const int descriptor = connected();
        setTimeout(descriptor, 20, 0);

        EXPECT_EQ(static_cast<std::ptrdiff_t>(count), receive(descriptor).result);

        platform::close(descriptor);
    }
}

TEST_F(SocketReceive, MoreThanTwelveBytesLeaveTheRest) {
    const ScriptedDaemon daemon(m_folder.path(), [](auto& peer) {
        peer.write(reply());
        peer.write(reply());
        peer.readToEnd();
    });
    const int descriptor = connected();

    EXPECT_EQ(reply(), receive(descriptor).bytes);
    EXPECT_EQ(reply(), receive(descriptor).bytes);

    platform::close(descriptor);
}

TEST_F(SocketReceive, ASilentPeerEndsTheWaitWithTheTime) {
    ScriptedDaemon daemon(m_folder.path(), [](auto& peer) { peer.waitForRelease(); });
    const int descriptor = connected();
    EXPECT_EQ(0, setTimeout(descriptor, 0, 100'000));

    const auto received = receive(descriptor);

    EXPECT_EQ(-1, received.result);
    EXPECT_GE(received.milliseconds, 100);
    EXPECT_LT(received.milliseconds, 1000);
    platform::close(descriptor);
    daemon.release();
}

TEST_F(SocketReceive, ItIsToldWhetherAReplyCameInTime) {
    ScriptedDaemon daemon(m_folder.path(), [](auto& peer) {
        peer.write(reply());
        peer.write({8, 0, 0});
        peer.waitForRelease();
    });
    std::vector<std::string> heard;
    seat::setConnectionListener([&](const std::string& path, seat::ConnectionEvent event) {
        EXPECT_EQ(path, "/Library/Caches/jvncontrol.sock");
        heard.emplace_back(event == seat::ConnectionEvent::Connected  ? "connected"
                           : event == seat::ConnectionEvent::Answered ? "answered"
                                                                      : "silent");
    });

    const int descriptor = connected();
    receive(descriptor); // however long that takes
    EXPECT_EQ(heard, (std::vector<std::string>{"connected", "answered"}));
    setTimeout(descriptor, 0, 10'000);
    receive(descriptor);
    EXPECT_EQ(heard.back(), "silent") << "part of a reply is none";
    setTimeout(descriptor, 0, 0);
    daemon.release();
    receive(descriptor);
    EXPECT_EQ(heard.size(), 3u) << "a connection that is closed is not silent";

    platform::close(descriptor);
    seat::tellOfReply(descriptor, seat::ConnectionEvent::Answered);
    EXPECT_EQ(heard.size(), 3u) << "who has its number next is another";
    seat::setConnectionListener({});
}

TEST_F(SocketReceive, APeerThatStallsWithinItsReplyGivesWhatCameWhenTheTimeIsUp) {
    ScriptedDaemon daemon(m_folder.path(), [](auto& peer) {
        peer.write({8, 0, 0, 0, 7, 0});
        peer.waitForRelease();
    });
    const int descriptor = connected();
    setTimeout(descriptor, 0, 100'000);
    ::pollfd beginning{descriptor, POLLIN, 0};
    ASSERT_EQ(1, ::poll(&beginning, 1, 20'000));

    const auto received = receive(descriptor);

    EXPECT_EQ(6, received.result);
    EXPECT_GE(received.milliseconds, 100);
    EXPECT_LT(received.milliseconds, 1000);
    platform::close(descriptor);
    daemon.release();
}

// Interrupts this thread every ten milliseconds, as a system call that is not restarted sees it.
class Interruptions {
public:
    Interruptions() {
        struct ::sigaction action {};
        action.sa_handler = [](int) {};
        ::sigaction(SIGALRM, &action, &m_former);
        m_thread = std::thread([this, interrupted = ::pthread_self()] {
            while (!m_stop) {
                ::pthread_kill(interrupted, SIGALRM);
                std::this_thread::sleep_for(std::chrono::milliseconds(10));
            }
        });
    }
    ~Interruptions() {
        m_stop = true;
        m_thread.join();
        ::sigaction(SIGALRM, &m_former, nullptr);
    }
    Interruptions(const Interruptions&) = delete;
    Interruptions& operator=(const Interruptions&) = delete;

private:
    struct ::sigaction m_former {};
    std::atomic<bool> m_stop = false;
    std::thread m_thread;
};

TEST_F(SocketReceive, SignalsDoNotCutTheWaitShortNorProlongIt) {
    ScriptedDaemon daemon(m_folder.path(), [](auto& peer) { peer.waitForRelease(); });
    const int descriptor = connected();
    setTimeout(descriptor, 0, 300'000);
    {
        const Interruptions interruptions;

        const auto received = receive(descriptor);

        EXPECT_EQ(-1, received.result);
        EXPECT_GE(received.milliseconds, 299);
        EXPECT_LT(received.milliseconds, 1500);
    }
    // The time-out is what it was.
    const auto again = receive(descriptor);
    EXPECT_GE(again.milliseconds, 299);
    EXPECT_LT(again.milliseconds, 1500);
    platform::close(descriptor);
    daemon.release();
}

TEST_F(SocketReceive, SignalsBetweenTheBytesDoNotLoseAny) {
    const ScriptedDaemon daemon(m_folder.path(), [](auto& peer) {
        for (const auto byte : reply()) {
            peer.write({byte});
            std::this_thread::sleep_for(std::chrono::milliseconds(15));
        }
    });
    const int descriptor = connected();
    const Interruptions interruptions;
    setTimeout(descriptor, 20, 0);

    const auto received = receive(descriptor);

    EXPECT_EQ(12, received.result);
    EXPECT_EQ(reply(), received.bytes);
    platform::close(descriptor);
}

TEST_F(SocketReceive, WithoutWaitingForAllItGivesWhatIsThere) {
    ScriptedDaemon daemon(m_folder.path(), [](auto& peer) {
        peer.write({1, 2, 3});
        peer.waitForRelease();
    });
    const int descriptor = connected();
    const Interruptions interruptions;

    EXPECT_EQ(3, receive(descriptor, 0).result);

    platform::close(descriptor);
    daemon.release();
}

TEST_F(SocketReceive, OnlyTheReceiveTimeoutCanBeSet) {
    const int descriptor = makeSocket();
    const platform::timeval time{1, 0};

    EXPECT_EQ(0, setTimeout(descriptor, 20, 0));
    EXPECT_EQ(-1, platform::setsockopt(descriptor, 1, platform::SO_RCVTIMEO_OPTION, &time, sizeof time));
    EXPECT_EQ(-1, platform::setsockopt(descriptor, platform::SOL_SOCKET_LEVEL, 20, &time, sizeof time));
    EXPECT_EQ(-1, platform::setsockopt(descriptor, platform::SOL_SOCKET_LEVEL, platform::SO_RCVTIMEO_OPTION, &time, 8));
    EXPECT_EQ(-1, platform::setsockopt(descriptor, platform::SOL_SOCKET_LEVEL, platform::SO_RCVTIMEO_OPTION, nullptr,
                                       sizeof time));
    EXPECT_EQ(-1, setTimeout(-1, 20, 0));

    platform::close(descriptor);
}

} // namespace
