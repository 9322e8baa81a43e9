#include "tests/simulator/DaemonTest.h"

#include "simulator/Daemon.h"
#include "tests/support/BusPeer.h"
#include "tests/support/PrivateBus.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>

namespace {

using simulator::Command;

class JVND : public DaemonTest {
protected:
    JVND() { EXPECT_TRUE(m_daemon.hears("ready")); }

    static std::string state(const simulator::Bytes& reply) {
        return reply.size() == 12 ? std::to_string(simulator::word(reply, 4)) : "no reply";
    }
    // The daemon treats whoever connects from now on so.
    void manner(const std::string& line) {
        m_daemon.say(line);
        EXPECT_TRUE(m_daemon.hears(": from now on", ++m_changes));
    }
    // Until it hears: it connects to the bus in its own time, and answers us meanwhile.
    bool isOnTheBus() {
        const testing_support::BusPeer peer(m_bus.address());
        // It asks for the two one after the other, and may hear one of them first.
        const auto hearsBoth = [this] {
            return m_daemon.hasSaid("heard com.quorrel.jvnprefs.changed") &&
                   m_daemon.hasSaid("heard com.quorrel.jvninitbt");
        };
        for (int i = 0; i < 2000 && !hearsBoth(); ++i) {
            peer.emitSignal("/com/quorrel", "com.quorrel", "jvninitbt");
            peer.emitSignal("/com/quorrel/jvnprefs", "com.quorrel.jvnprefs", "changed");
            query();
        }
        return hearsBoth();
    }
    double milliseconds(const std::function<void()>& work) const {
        const auto start = std::chrono::steady_clock::now();
        work();
        return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
    }
    // The daemon's lines about connections, without its manner's.
    std::vector<std::string> said() {
        m_daemon.signal(SIGTERM);
        EXPECT_EQ(0, m_daemon.end());
        std::vector<std::string> lines;
        for (const auto& line : m_daemon.lines())
            if (line != "ready" && line.find("from now on") == std::string::npos && !line.starts_with("joyvane:"))
                lines.push_back(line);
        return lines;
    }

    testing_support::PrivateBus m_bus;
    std::size_t m_changes = 0;
    StandIn m_daemon{JVND_PROGRAM, {"--root", m_folder.path()}};
};

TEST_F(JVND, KeepsWhetherAControllerIsConnected) {
    EXPECT_EQ("7", state(query()));
    EXPECT_EQ(8u, simulator::word(exchange(frame(Command::Connect, 20, 1)), 0));
    EXPECT_EQ("1", state(query()));

    const int descriptor = connect();
    send(descriptor, frame(Command::Disconnect, 12, 1));
    send(descriptor, frame(Command::EndSession, 12, 1));
    platform::close(descriptor);
    EXPECT_TRUE(m_daemon.hears("EndSession"));
    EXPECT_EQ("7", state(query()));

    exchange(frame(Command::Connect, 20, 2));
    EXPECT_TRUE(exchange(frame(Command::RestartDaemons, 20), 12, 50).empty());
    EXPECT_EQ("7", state(query()));
}

TEST_F(JVND, SaysEachFrameInHexWithItsMeaning) {
    const int descriptor = connect();
    auto request = frame(Command::Connect, 20, 1);
    for (std::size_t i = 0; i < 6; ++i) request[12 + i] = static_cast<std::uint8_t>(i + 1);
    send(descriptor, request);
    EXPECT_EQ(12u, receive(descriptor).size());
    auto colour = frame(Command::SetLEDColor, 16, 1);
    colour[13] = 0x4e;
    colour[14] = 0xfd;
    send(descriptor, colour);
    platform::close(descriptor);
    ASSERT_TRUE(m_daemon.hears("closed by"));

    EXPECT_EQ(
        (std::vector<std::string>{
            "1 opened",
            "1 < 01 00 00 00 01 00 00 00 00 00 00 00 01 02 03 04 05 06 00 00 | Connect, DualShock 4, with an address",
            "1 > 08 00 00 00 01 00 00 00 00 00 00 00 | ConnectAccepted",
            "1 < 04 00 00 00 01 00 00 00 00 00 00 00 00 4e fd 00 | SetLEDColor, DualShock 4, 00 4e fd",
            "1 closed by the other side",
        }),
        said());
}

TEST_F(JVND, AFrameInPiecesIsOneFrameAndTwoInOnePieceAreTwo) {
    const int descriptor = connect();
    const auto request = frame(Command::QueryConnection, 12);
    for (const auto byte : request) send(descriptor, {byte});
    EXPECT_EQ(12u, receive(descriptor).size());
    auto two = request;
    two.insert(two.end(), request.begin(), request.end());
    send(descriptor, two);
    EXPECT_EQ(24u, receive(descriptor, 24).size());
    platform::close(descriptor);
}

TEST_F(JVND, SendsNothingUnasked) {
    const int descriptor = connect();
    EXPECT_TRUE(receive(descriptor, 1, 100).empty());
    send(descriptor, {5, 0, 0});
    EXPECT_TRUE(receive(descriptor, 1, 100).empty());
    platform::close(descriptor);
    EXPECT_TRUE(m_daemon.hears("1 closed within a frame"));
}

TEST_F(JVND, HangsUpOnACommandThatThereIsNot) {
    EXPECT_TRUE(exchange(simulator::makeReply(2, 0)).empty());
    EXPECT_TRUE(m_daemon.hears("unknown command"));
    EXPECT_EQ("7", state(query()));
}

TEST_F(JVND, HearsNotifications) { EXPECT_TRUE(isOnTheBus()); }

TEST_F(JVND, CanRefuseConnectionsAndBeDeaf) {
    for (const auto* const line : {"refuse", "deaf"}) {
        manner(line);
        EXPECT_TRUE(std::filesystem::exists(socketFile()));
        EXPECT_LT(milliseconds([] { EXPECT_EQ(-1, connect()); }), 100) << line;
        manner("open");
        EXPECT_EQ("7", state(query()));
    }
}

TEST_F(JVND, CanCloseAtEachPoint) {
    for (const auto* const where : {"accept", "byte", "frame"}) {
        manner(std::string("close ") + where);
        EXPECT_TRUE(query().empty()) << where;
    }
    manner("close answer");
    EXPECT_EQ("7", state(query()));
    EXPECT_TRUE(m_daemon.hears("closed after an answer"));
}

TEST_F(JVND, CanStaySilentOrLeaveEverythingUnread) {
    for (const auto* const line : {"silent", "unread"}) {
        manner("behave");
        manner(line);
        EXPECT_TRUE(exchange(frame(Command::QueryConnection, 12), 12, 100).empty()) << line;
    }
}

TEST_F(JVND, CanAnswerLateOrByteByByte) {
    manner("delay 120");
    EXPECT_GE(milliseconds([] { EXPECT_EQ("7", state(query())); }), 119);
    manner("behave");
    manner("trickle 5");
    EXPECT_GE(milliseconds([] { EXPECT_EQ("7", state(query())); }), 11 * 5);
}

TEST_F(JVND, CanAnswerWithAnyNumberOfBytes) {
    for (std::size_t count = 0; count < 12; ++count) {
        manner("bytes " + std::to_string(count));
        EXPECT_EQ(count, query().size());
    }
    manner("hold");
    EXPECT_EQ(11u, exchange(frame(Command::QueryConnection, 12), 12, 100).size());
    manner("behave");
    manner("extra 5");
    EXPECT_EQ(17u, exchange(frame(Command::QueryConnection, 12), 17).size());
}

TEST_F(JVND, CanAnswerAnything) {
    manner("code 9");
    EXPECT_EQ(9u, simulator::word(exchange(frame(Command::Connect, 20, 1)), 0));
    EXPECT_EQ("7", state(query())); // it was refused
    manner("state 3");
    EXPECT_EQ("3", state(query()));
    manner("reply 09 00 00 00 01 02 03 04 05 06 07 08");
    EXPECT_EQ("09 00 00 00 01 02 03 04 05 06 07 08", simulator::hex(query()));
    manner("behave");
    manner("garbage");
    EXPECT_EQ(12u, query().size());
    EXPECT_NE("7", state(query()));
}

TEST_F(JVND, AThousandExchangesLeaveItNoDescriptor) {
    ASSERT_TRUE(isOnTheBus());
    const std::string folder = "/proc/" + std::to_string(m_daemon.identifier()) + "/fd";
    const auto count = [&] {
        return std::distance(std::filesystem::directory_iterator(folder), std::filesystem::directory_iterator());
    };
    // When all connections have ended; what it says is read, so that none of it is lost.
    const auto ended = [this] {
        m_daemon.hasSaid("opened");
        const auto opened =
            std::ranges::count_if(m_daemon.lines(), [](auto& line) { return line.ends_with(" opened"); });
        return m_daemon.hears(" closed by", static_cast<std::size_t>(opened));
    };
    ASSERT_TRUE(ended());
    const auto before = count();
    for (int i = 0; i < 1000; ++i) {
        ASSERT_EQ("7", state(query()));
        if (i % 20 == 0) m_daemon.hasSaid("opened");
    }
    ASSERT_TRUE(ended());
    EXPECT_EQ(before, count());
}

} // namespace
