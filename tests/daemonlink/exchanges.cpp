#include "daemonlink/exchanges.h"
#include "daemonlink/ControlConnection.h"
#include "daemonlink/control_socket.h"
#include "platform/socket.h"
#include "tests/support/ScriptedDaemon.h"
#include "tests/support/TestRoot.h"
#include "tests/support/descriptors.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

using testing_support::Bytes;
using testing_support::DaemonPeer;
using testing_support::hex;
using testing_support::openDescriptors;
using testing_support::ScriptedDaemon;

class Exchange : public testing::Test {
protected:
    const std::string& root() const { return m_root.path(); }

    // Runs `exchange` on a fresh connection and gives what the daemon got on it.
    template <class Run> std::string bytesOf(ScriptedDaemon::Script script, Run&& exchange) {
        ScriptedDaemon daemon(root(), std::move(script));
        {
            const auto connection = ControlConnection::open();
            EXPECT_TRUE(connection);
            if (connection) exchange(connection.descriptor());
        }
        EXPECT_TRUE(daemon.waitForConnections(1));
        return daemon.connections().empty() ? "" : hex(daemon.connections().front());
    }

private:
    testing_support::TestRoot m_root;
};

ScriptedDaemon::Script replying(std::size_t requestSize, Bytes reply) {
    return [=](DaemonPeer& peer) {
        peer.read(requestSize);
        peer.write(reply);
        peer.readToEnd();
    };
}

// What a daemon that answers with a part of a reply and then closes lets the other side read.
ScriptedDaemon::Script replyingAndClosing(std::size_t requestSize, Bytes reply) {
    return [=](DaemonPeer& peer) {
        peer.read(requestSize);
        peer.write(reply);
    };
}

const Bytes acceptedReply{8, 0, 0, 0, 1, 2, 3, 4, 5, 6, 7, 8};

TEST_F(Exchange, ConnectSendsTwentyBytesWithTheAddressAndZerosElsewhere) {
    const auto bytes = bytesOf(replying(20, acceptedReply), [](int descriptor) {
        JVNControlFrame frame;
        for (std::uint8_t i = 0; i < 6; ++i) frame.payload[i] = static_cast<std::uint8_t>(0xA0 + i);
        EXPECT_TRUE(daemonlink::connect(descriptor, frame, 2));
    });

    EXPECT_EQ(bytes, "01 00 00 00 02 00 00 00 00 00 00 00 a0 a1 a2 a3 a4 a5 00 00");
}

TEST_F(Exchange, ConnectThatIsRefusedEndsTheSessionWithTheRepliesOwnBytes) {
    const auto bytes = bytesOf(replying(20, {9, 0, 0, 0, 1, 2, 3, 4, 5, 6, 7, 8}), [](int descriptor) {
        JVNControlFrame frame;
        EXPECT_FALSE(daemonlink::connect(descriptor, frame, 1));
    });

    EXPECT_EQ(bytes, "01 00 00 00 01 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "
                     "06 00 00 00 01 02 03 04 05 06 07 08");
}

TEST_F(Exchange, ConnectThatGetsNoReplyInTimeEndsTheSessionWithZeros) {
    const auto bytes = bytesOf([](DaemonPeer& peer) { peer.readToEnd(); },
                               [](int descriptor) {
                                   const platform::timeval soon{0, 20000};
                                   ASSERT_EQ(platform::setsockopt(descriptor, platform::SOL_SOCKET_LEVEL,
                                                                  platform::SO_RCVTIMEO_OPTION, &soon, sizeof soon),
                                             0);
                                   JVNControlFrame frame;
                                   EXPECT_FALSE(daemonlink::connect(descriptor, frame, 1));
                               });

    EXPECT_EQ(bytes.substr(20 * 3), "06 00 00 00 00 00 00 00 00 00 00 00");
}

TEST_F(Exchange, ConnectTakesNoReplyOfFewerThanTwelveBytesForAccepted) {
    for (std::size_t size = 0; size < 12; ++size) {
        Bytes cut(acceptedReply.begin(), acceptedReply.begin() + static_cast<std::ptrdiff_t>(size));
        bytesOf(replyingAndClosing(20, cut), [&](int descriptor) {
            JVNControlFrame frame;
            EXPECT_FALSE(daemonlink::connect(descriptor, frame, 1)) << size << " bytes";
        });
    }
}

TEST_F(Exchange, ConnectTakesAReplyHoweverItIsSplit) {
    for (std::size_t split = 1; split < 12; ++split) {
        const auto script = [&](DaemonPeer& peer) {
            peer.read(20);
            peer.write(Bytes(acceptedReply.begin(), acceptedReply.begin() + static_cast<std::ptrdiff_t>(split)));
            peer.write(Bytes(acceptedReply.begin() + static_cast<std::ptrdiff_t>(split), acceptedReply.end()));
            peer.readToEnd();
        };
        bytesOf(script, [&](int descriptor) {
            JVNControlFrame frame;
            EXPECT_TRUE(daemonlink::connect(descriptor, frame, 1)) << "split at " << split;
        });
    }
}

TEST_F(Exchange, ConnectReadsTwelveBytesOfALongerReply) {
    Bytes longer = acceptedReply;
    longer.insert(longer.end(), 100, 0xEE);
    bytesOf(replying(20, longer), [](int descriptor) {
        JVNControlFrame frame;
        EXPECT_TRUE(daemonlink::connect(descriptor, frame, 1));
    });
}

TEST_F(Exchange, APeerThatClosesOrResetsBeforeTheReplyIsARefusalAndNoSignal) {
    const ScriptedDaemon::Script scripts[] = {[](DaemonPeer&) {}, [](DaemonPeer& peer) { peer.read(20); },
                                              [](DaemonPeer& peer) { peer.close(); },
                                              [](DaemonPeer& peer) {
                                                  peer.read(7);
                                                  peer.close();
                                              }};
    for (const auto& script : scripts)
        bytesOf(script, [](int descriptor) {
            JVNControlFrame frame;
            EXPECT_FALSE(daemonlink::connect(descriptor, frame, 1));
            daemonlink::disconnect(descriptor, frame, 1);
            daemonlink::setLEDColor(descriptor, 1, 2, 3);
        });
}

TEST_F(Exchange, DisconnectSendsItsFrameAndTheSameBytesAsEndSession) {
    const auto bytes = bytesOf([](DaemonPeer& peer) { peer.readToEnd(); },
                               [](int descriptor) {
                                   JVNControlFrame frame;
                                   daemonlink::disconnect(descriptor, frame, 5);
                               });

    EXPECT_EQ(bytes, "00 00 00 00 05 00 00 00 00 00 00 00 06 00 00 00 05 00 00 00 00 00 00 00");
}

TEST_F(Exchange, QuerySendsTwelveBytes) {
    const auto bytes = bytesOf(replying(12, Bytes(12, 0)), [](int descriptor) {
        JVNControlFrame frame;
        EXPECT_EQ(daemonlink::queryConnection(descriptor, frame), daemonlink::QueryReply::Connected);
    });

    EXPECT_EQ(bytes, "05 00 00 00 00 00 00 00 00 00 00 00");
}

TEST_F(Exchange, QueryStateSevenSaysNothingAndAnyOtherSaysConnected) {
    for (const int state : {0, 1, 6, 7, 8, 255}) {
        Bytes reply(12, 0);
        reply[4] = static_cast<std::uint8_t>(state);
        bytesOf(replying(12, reply), [&](int descriptor) {
            JVNControlFrame frame;
            EXPECT_EQ(daemonlink::queryConnection(descriptor, frame),
                      state == 7 ? daemonlink::QueryReply::Unknown : daemonlink::QueryReply::Connected);
        });
    }
}

TEST_F(Exchange, QueryWithoutTwelveWholeBytesSaysNotConnected) {
    for (std::size_t size = 0; size < 12; ++size) {
        Bytes reply(size, 0);
        if (size > 4) reply[4] = 7;
        bytesOf(replyingAndClosing(12, reply), [&](int descriptor) {
            JVNControlFrame frame;
            EXPECT_EQ(daemonlink::queryConnection(descriptor, frame), daemonlink::QueryReply::NotConnected) << size;
        });
    }
}

TEST_F(Exchange, SetLEDColorSendsSixteenBytesForADualShock4) {
    const auto bytes = bytesOf([](DaemonPeer& peer) { peer.readToEnd(); },
                               [](int descriptor) { daemonlink::setLEDColor(descriptor, 0x00, 0x4E, 0xFD); });

    EXPECT_EQ(bytes, "04 00 00 00 01 00 00 00 00 00 00 00 00 4e fd 00");
}

TEST_F(Exchange, RestartDaemonsSendsTwentyBytesThatCarryNothingElse) {
    const auto bytes = bytesOf([](DaemonPeer& peer) { peer.readToEnd(); },
                               [](int descriptor) { daemonlink::restartDaemons(descriptor); });

    EXPECT_EQ(bytes, "03 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00");
}

TEST_F(Exchange, TheTimeoutFailsOnWhatIsNoSocket) { EXPECT_FALSE(daemonlink::setReplyTimeout(-1, 1)); }

TEST_F(Exchange, WithoutAListenerConnectingFailsAndLeavesNothingOpen) {
    const auto before = openDescriptors();
    for (int i = 0; i < 100; ++i) {
        EXPECT_FALSE(ControlConnection::open());
        EXPECT_EQ(JVNConnectToControlSocket(), -1);
        EXPECT_EQ(JVNConnecToUNIXSocket("/nowhere", 9), -1);
    }
    EXPECT_EQ(openDescriptors(), before);
}

TEST_F(Exchange, AStaleSocketFileIsAFailure) {
    { const ScriptedDaemon daemon(root()); }
    testing_support::TestRoot::write(root() + "/Library/Caches/jvncontrol.sock", "no socket");
    EXPECT_EQ(JVNConnectToControlSocket(), -1);
}

TEST_F(Exchange, TheExportedFunctionsConnectToTheSameSocket) {
    ScriptedDaemon daemon(root());
    const int fixed = JVNConnectToControlSocket();
    ASSERT_NE(fixed, -1);
    platform::close(fixed);
    const char path[] = "/Library/Caches/jvncontrol.sock";
    const int given = JVNConnecToUNIXSocket(path, sizeof path);
    ASSERT_NE(given, -1);
    platform::close(given);
    EXPECT_TRUE(daemon.waitForConnections(2));
}

// Callers count the terminating zero; the record is cleared first, so a path without one is still read to its end.
TEST_F(Exchange, APathWithoutItsZeroStillConnects) {
    ScriptedDaemon daemon(root());
    const char path[] = "/Library/Caches/jvncontrol.socket";
    const int descriptor = JVNConnecToUNIXSocket(path, 31);
    ASSERT_NE(descriptor, -1) << "what stands behind the path is not part of it";
    platform::close(descriptor);
}

TEST(ControlSocketDeathTest, APathBeyondTheAddressAborts) {
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    const std::string path(105, 'x');
    EXPECT_DEATH(JVNConnecToUNIXSocket(path.c_str(), path.size()), "");
}

TEST_F(Exchange, APathThatFillsTheAddressIsNoError) {
    const std::string path(104, 'x');
    EXPECT_EQ(JVNConnecToUNIXSocket(path.c_str(), path.size()), -1);
}

TEST(ControlConnection, ClosesOnceAndMovesItsDescriptor) {
    const auto before = openDescriptors();
    {
        ControlConnection a(platform::socket(1, 1, 0));
        ControlConnection b = std::move(a);
        EXPECT_FALSE(a); // NOLINT(bugprone-use-after-move): what it is then is the point
        EXPECT_TRUE(b);
        a = std::move(b);
        a.close();
        a.close();
    }
    EXPECT_EQ(openDescriptors(), before);
}

} // namespace
