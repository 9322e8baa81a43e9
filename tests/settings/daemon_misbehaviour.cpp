// Daemons that answer too little, in pieces, too much, too late or not at all: what the page makes of it.

#include "tests/settings/connection_test.h"
#include "tests/support/Heartbeat.h"
#include "tests/support/descriptors.h"

#include <chrono>
#include <csignal>
#include <filesystem>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>

namespace {

const Bytes accepted{8, 0, 0, 0, 0xA1, 0xA2, 0xA3, 0xA4, 0xA5, 0xA6, 0xA7, 0xA8};
const Bytes refused{9, 0, 0, 0, 0xB1, 0xB2, 0xB3, 0xB4, 0xB5, 0xB6, 0xB7, 0xB8};
const std::string queryFrame = "05 00 00 00 00 00 00 00 00 00 00 00";
const std::string colourFrame = "04 00 00 00 01 00 00 00 00 00 00 00 00 4e fd 00";

Bytes beginning(const Bytes& bytes, std::size_t count) {
    return {bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(count)};
}
Bytes after(const Bytes& bytes, std::size_t count) {
    return {bytes.begin() + static_cast<std::ptrdiff_t>(count), bytes.end()};
}

// Answers a query with state 7; a connect is treated as the script says, its frame read.
ScriptedDaemon::Script onConnect(ScriptedDaemon::Script script) {
    return [=](DaemonPeer& peer) {
        const Bytes head = peer.read(12);
        if (head.size() == 12 && head[0] == 1) {
            peer.read(8);
            script(peer);
        } else if (head.size() == 12 && head[0] == 5) {
            peer.write(reply(0, 7));
            peer.readToEnd();
        }
    };
}

class DaemonMisbehaviour : public Connection {
protected:
    // Shows the page, settled, over a daemon that treats connects in this way.
    void showOver(ScriptedDaemon::Script connect) {
        start(onConnect(std::move(connect)));
        showSettled(1, true);
    }
    // The query that each appearance makes, with the page's belief as given; gives what the daemon got.
    std::string query(bool believed) {
        page->setControllerConnected(believed);
        const std::size_t before = daemon->connectionCount();
        page->viewWillAppear(false);
        EXPECT_TRUE(app.waitUntil(
            [&] { return daemon->connectionCount() > before && rowIsEnabled() && seat::mainQueueIsEmpty(); }));
        const auto connections = daemon->connections();
        return connections.size() > before ? hex(connections[before]) : "";
    }
    std::string row() { return page->connectSpecifier()->name(); }
    // As the page is after an exchange that did not connect.
    void expectNotConnected(const std::string& what) {
        EXPECT_FALSE(page->controllerConnected()) << what;
        EXPECT_EQ(row(), "Connect Controller") << what;
        EXPECT_TRUE(app.find("Connect Controller")) << what;
    }
    // Goes back to a page that is not connected, whatever the last exchange made of it.
    void disbelieve() {
        page->setControllerConnected(false);
        page->reloadSpecifiers();
        app.settle();
    }
};

TEST_F(DaemonMisbehaviour, AConnectsReplyOfFewerThanTwelveBytesIsAnsweredWithEndSessionAndWhatCame) {
    Bytes answer;
    showOver([&](DaemonPeer& peer) {
        peer.write(answer);
        peer.endWriting();
        peer.readToEnd();
    });
    for (const Bytes& whole : {accepted, refused})
        for (std::size_t size = 0; size < 12; ++size) {
            answer = beginning(whole, size);
            Bytes end = answer;
            end.resize(12, 0);
            const Bytes command{6, 0, 0, 0};
            std::copy(command.begin(), command.end(), end.begin());

            EXPECT_EQ(exchange(), connectFrame + " " + hex(end)) << size << " bytes";
            expectNotConnected(hex(answer));
        }
    EXPECT_EQ(failures, 0);
}

TEST_F(DaemonMisbehaviour, AQuerysReplyOfFewerThanTwelveBytesClearsTheFlag) {
    start([](DaemonPeer& peer) { peer.readToEnd(); });
    for (const Bytes& whole : {reply(0, 0), reply(0, 7), reply(8, 0)})
        for (std::size_t size = 0; size < 12; ++size) {
            daemon->setScript([answer = beginning(whole, size)](DaemonPeer& peer) {
                peer.read(12);
                peer.write(answer);
                peer.endWriting();
                peer.readToEnd();
            });
            if (!page) showSettled(1, true);
            for (const bool believed : {false, true}) {
                EXPECT_EQ(query(believed), queryFrame) << size << " bytes";
                expectNotConnected(hex(beginning(whole, size)));
            }
        }
    EXPECT_EQ(failures, 0);
}

TEST_F(DaemonMisbehaviour, AReplyCountsHoweverItIsSplit) {
    std::size_t split = 0;
    showOver([&](DaemonPeer& peer) {
        peer.write(beginning(accepted, split));
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
        peer.write(after(accepted, split));
        peer.readToEnd();
    });
    for (split = 1; split < 12; ++split) {
        EXPECT_EQ(exchange(), connectFrame + " " + colourFrame) << "split at " << split;
        EXPECT_TRUE(page->controllerConnected());
        EXPECT_EQ(row(), "Disconnect Controller");
        disbelieve();
    }
    daemon->setScript([&](DaemonPeer& peer) {
        peer.read(12);
        const Bytes answer = reply(0, 1);
        peer.write(beginning(answer, split));
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
        peer.write(after(answer, split));
        peer.readToEnd();
    });
    for (split = 1; split < 12; ++split) {
        EXPECT_EQ(query(false), queryFrame);
        EXPECT_TRUE(page->controllerConnected()) << "split at " << split;
    }
}

TEST_F(DaemonMisbehaviour, AReplyByteByByteCounts) {
    showOver([](DaemonPeer& peer) {
        for (const auto byte : accepted) {
            peer.write({byte});
            std::this_thread::sleep_for(std::chrono::milliseconds(3));
        }
        peer.readToEnd();
    });
    EXPECT_EQ(exchange(), connectFrame + " " + colourFrame);
    EXPECT_EQ(row(), "Disconnect Controller");
}

TEST_F(DaemonMisbehaviour, WhatFollowsTheTwelveBytesIsNotLookedAt) {
    showOver([](DaemonPeer& peer) {
        Bytes longer = accepted;
        longer.insert(longer.end(), 3000, 0xEE);
        peer.write(longer);
        peer.readToEnd();
    });
    EXPECT_EQ(exchange(), connectFrame + " " + colourFrame);
    EXPECT_EQ(row(), "Disconnect Controller");
}

TEST_F(DaemonMisbehaviour, GarbageIsARefusal) {
    showOver([](DaemonPeer& peer) {
        peer.write(Bytes(12, 0xFF));
        peer.readToEnd();
    });
    EXPECT_EQ(exchange(), connectFrame + " 06 00 00 00 ff ff ff ff ff ff ff ff");
    expectNotConnected("garbage");
}

// Unread bytes at the peer's close reset the connection.
TEST_F(DaemonMisbehaviour, APeerThatHangsUpAtAnyPointOfAConnectIsARefusal) {
    start([](DaemonPeer& peer) { peer.read(12); });
    showSettled(1, true);
    for (std::size_t count = 0; count <= 20; ++count) {
        daemon->setScript([=](DaemonPeer& peer) {
            peer.read(count);
            peer.close();
        });
        EXPECT_EQ(exchange(), connectFrame.substr(0, count == 0 ? 0 : count * 3 - 1));
        expectNotConnected("hung up after " + std::to_string(count));
    }
    EXPECT_EQ(failures, 0) << "it could be reached";
    EXPECT_EQ(app.alert(), std::nullopt);
}

TEST_F(DaemonMisbehaviour, APeerThatHangsUpAtAnyPointOfAQueryClearsTheFlag) {
    start([](DaemonPeer& peer) { peer.read(12); });
    showSettled(1, true);
    for (std::size_t count = 0; count <= 12; ++count) {
        daemon->setScript([=](DaemonPeer& peer) {
            peer.read(count);
            peer.close();
        });
        EXPECT_EQ(query(true), queryFrame.substr(0, count == 0 ? 0 : count * 3 - 1));
        expectNotConnected("hung up after " + std::to_string(count));
    }
}

TEST_F(DaemonMisbehaviour, APeerThatHangsUpAtAnyPointOfADisconnectIsDisconnected) {
    start([](DaemonPeer& peer) { peer.read(12); });
    showSettled(1, true);
    for (std::size_t count = 0; count <= 24; ++count) {
        daemon->setScript([=](DaemonPeer& peer) {
            peer.read(count);
            peer.close();
        });
        page->setControllerConnected(true);
        page->reloadSpecifiers();
        exchange();
        expectNotConnected("hung up after " + std::to_string(count));
    }
}

TEST_F(DaemonMisbehaviour, APeerThatAcceptsAndHangsUpBeforeTheColourIsConnected) {
    showOver([](DaemonPeer& peer) {
        peer.write(accepted);
        peer.close();
    });
    exchange();
    EXPECT_TRUE(page->controllerConnected());
    EXPECT_EQ(row(), "Disconnect Controller");
}

TEST_F(DaemonMisbehaviour, AQueryOfAPeerThatNeverReadsEndsAfterItsSecondAndTheMainThreadIsNeverLate) {
    start([](DaemonPeer& peer) { peer.waitForRelease(); });
    show(1, 1);
    page->setControllerConnected(true);
    page->viewWillAppear(false);
    testing_support::Heartbeat heartbeat;

    EXPECT_TRUE(app.waitUntil([&] { return !page->controllerConnected() && rowIsEnabled(); }));

    EXPECT_GT(heartbeat.beats(), 5);
    EXPECT_LT(heartbeat.longestMilliseconds(), 500);
    expectNotConnected("silence");
    daemon->release();
    daemon->release();
}

// A daemon whose queue of connections is full and who takes none.
class DeafDaemon {
public:
    explicit DeafDaemon(const std::string& root) {
        const std::string folder = root + "/Library/Caches";
        std::filesystem::create_directories(folder);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        (folder + "/jvncontrol.sock").copy(address.sun_path, sizeof address.sun_path - 1);
        const auto* const named = reinterpret_cast<const sockaddr*>(&address);
        m_sockets.push_back(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
        if (::bind(m_sockets[0], named, sizeof address) != 0 || ::listen(m_sockets[0], 1) != 0) return;
        int result = 0;
        while (result == 0) {
            m_sockets.push_back(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
            result = ::connect(m_sockets.back(), named, sizeof address);
        }
    }
    ~DeafDaemon() {
        for (const int descriptor : m_sockets) ::close(descriptor);
    }
    DeafDaemon(const DeafDaemon&) = delete;
    DeafDaemon& operator=(const DeafDaemon&) = delete;

    bool isFull() const { return m_sockets.size() > 2; }

private:
    std::vector<int> m_sockets;
};

TEST_F(DaemonMisbehaviour, ADaemonWhoseQueueIsFullIsAnnouncedAsAwayAtOnce) {
    const DeafDaemon deaf(app.root());
    ASSERT_TRUE(deaf.isFull());
    show(1, 1, {{"PS4BluetoothAddress", NSData::dataWithBytes(address)}});
    ASSERT_TRUE(app.waitUntil([&] { return failures == 1; }));
    testing_support::Heartbeat heartbeat;

    ASSERT_TRUE(app.tap("Connect Controller"));

    EXPECT_TRUE(app.waitUntil([&] { return failures == 2 && heartbeat.beats() > 5; }));
    EXPECT_TRUE(rowIsEnabled());
    EXPECT_LT(heartbeat.longestMilliseconds(), 500);
}

TEST_F(DaemonMisbehaviour, AHundredBrokenExchangesLeaveNoDescriptorNoThreadAndNoChild) {
    showOver([](DaemonPeer&) {});
    const ScriptedDaemon::Script ways[] = {
        [](DaemonPeer&) {},
        [](DaemonPeer& peer) { peer.close(); },
        onConnect([](DaemonPeer& peer) { peer.write(beginning(accepted, 11)); }),
        onConnect([](DaemonPeer& peer) {
            peer.write(accepted);
            peer.close();
        }),
        onConnect([](DaemonPeer& peer) { peer.write(refused); }),
    };
    const auto runAll = [&] {
        for (const auto& way : ways) {
            daemon->setScript(way);
            exchange();
            disbelieve();
        }
    };
    runAll();
    const auto descriptors = testing_support::openDescriptors();
    const auto threads = testing_support::runningThreads();
    const auto children = testing_support::unreapedChildren();

    for (int i = 0; i < 20; ++i) runAll();

    EXPECT_EQ(testing_support::openDescriptors(), descriptors);
    EXPECT_LE(testing_support::runningThreads(), threads + 1);
    EXPECT_EQ(testing_support::unreapedChildren(), children);
}

} // namespace
