// The page goes, or the whole of it is freed, while the daemon still owes an answer.

#include "tests/settings/connection_test.h"

#include <atomic>

namespace {

class LeavingDuringAnExchange : public Connection {
protected:
    // A page that went before its exchange had begun could no longer be asked for its type: waits until the daemon has
    // what it was sent, then frees the page. Gives the row's cell, which the exchange holds.
    std::shared_ptr<PSTableCell> leaveOnceAsked() {
        EXPECT_TRUE(app.waitUntil([&] { return asked.load(); }));
        auto cell = page->connectSpecifier()->propertyForKey("cellObject").object<PSTableCell>();
        EXPECT_TRUE(cell && !cell->isUserInteractionEnabled());
        const std::weak_ptr<JoyvaneListController> weak = page;
        page = nullptr;
        app.close();
        EXPECT_TRUE(app.waitUntil([&] { return weak.expired(); }));
        return cell;
    }
    bool isEnabledAgain(const std::shared_ptr<PSTableCell>& cell) {
        return app.waitUntil([&] { return cell->isUserInteractionEnabled() && cell->textLabel()->isEnabled(); });
    }

    std::atomic<bool> asked = false;
};

TEST_F(LeavingDuringAnExchange, AConnectEndsAndTheCellIsEnabledAgain) {
    start([&](DaemonPeer& peer) {
        const Bytes head = peer.read(12);
        if (head.size() == 12 && head[0] == 5) return;
        peer.read(8);
        asked = true;
        peer.waitForRelease();
        peer.write({8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
        peer.readToEnd();
    });
    showSettled(1, true);
    ASSERT_TRUE(app.tap("Connect Controller"));
    const auto cell = leaveOnceAsked();

    daemon->release();

    EXPECT_TRUE(isEnabledAgain(cell));
    ASSERT_TRUE(daemon->waitForConnections(2));
    EXPECT_EQ(hex(daemon->connections()[1]), connectFrame) << "without a page there is no colour to send";
}

TEST_F(LeavingDuringAnExchange, AQueryEndsAndTheCellIsEnabledAgain) {
    start(answering(reply(0, 7), {}));
    showSettled(1, true);
    daemon->setScript([&](DaemonPeer& peer) {
        peer.read(12);
        asked = true;
        peer.waitForRelease();
        peer.write(reply(0, 1));
        peer.readToEnd();
    });
    page->viewWillAppear(false);
    const auto cell = leaveOnceAsked();

    daemon->release();

    EXPECT_TRUE(isEnabledAgain(cell));
    ASSERT_TRUE(daemon->waitForConnections(2));
    EXPECT_EQ(hex(daemon->connections()[1]), "05 00 00 00 00 00 00 00 00 00 00 00");
}

// Nothing in a disconnect waits for the daemon: the page goes at whatever point its task has come to.
TEST_F(LeavingDuringAnExchange, ADisconnectEndsAndTheCellIsEnabledAgain) {
    start(answering(reply(0, 0), reply(8, 0)));
    for (int i = 0; i < 20; ++i) {
        show(1, 1, {{"PS4BluetoothAddress", NSData::dataWithBytes(address)}});
        ASSERT_TRUE(app.waitUntil([&] { return page->connectSpecifier()->name() == "Disconnect Controller"; }));
        const auto cell = page->connectSpecifier()->propertyForKey("cellObject").object<PSTableCell>();
        const std::size_t before = daemon->connectionCount();

        page->connectController(page->connectSpecifier());
        page = nullptr;
        app.close();

        EXPECT_TRUE(isEnabledAgain(cell));
        ASSERT_TRUE(daemon->waitForConnections(before + 1));
    }
}

// Another screen above the page does not end an exchange either, and its result is taken.
TEST_F(LeavingDuringAnExchange, AConnectThatEndsBelowAnotherScreenIsTakenIn) {
    start([&](DaemonPeer& peer) {
        const Bytes head = peer.read(12);
        if (head.size() < 12) return;
        if (head[0] == 5) return peer.write(reply(0, 7));
        peer.read(8);
        asked = true;
        peer.waitForRelease();
        peer.write(reply(8, 0));
        peer.readToEnd();
    });
    showSettled(2, true);
    ASSERT_TRUE(app.tap("Connect Controller"));
    ASSERT_TRUE(app.waitUntil([&] { return asked.load(); }));
    app.navigation()->pushViewController_animated(UIViewController::alloc()->init(), false);

    daemon->release();

    EXPECT_TRUE(app.waitUntil([&] { return page->controllerConnected(); }));
    app.goBack();
    EXPECT_TRUE(app.waitUntil([&] { return rowIsEnabled() && app.find("Disconnect Controller"); }));
}

} // namespace
