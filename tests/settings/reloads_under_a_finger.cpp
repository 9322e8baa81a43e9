// The daemon's answer rebuilds the rows while a finger, or the keyboard, is on one of them.

#include "kit/uikit/hid_keys.h"
#include "tests/settings/connection_test.h"

namespace {

// The page over a daemon that answers its query when the test says so.
class ReloadUnderAFinger : public Connection {
protected:
    void showUnanswered(long type, long mode = 0, std::uint8_t state = 7) {
        start([state](DaemonPeer& peer) {
            const Bytes head = peer.read(12);
            if (head.size() == 12 && head[0] == 5) {
                peer.waitForRelease();
                peer.write(reply(0, state));
            }
            peer.readToEnd();
        });
        show(type, mode, {{"PS4BluetoothAddress", NSData::dataWithBytes(address)}});
        listBefore = page->specifierForID("controller_type");
    }
    // Lets the daemon answer, and the rows be rebuilt.
    void answer() {
        daemon->release();
        ASSERT_TRUE(app.waitUntil([&] { return page->specifierForID("controller_type") != listBefore; }));
    }
    CGPoint middleOf(const std::string& name) {
        const auto* const node = app.find(name);
        EXPECT_TRUE(node) << name;
        return node ? CGPoint{CGRectGetMidX(node->extent), CGRectGetMidY(node->extent)} : CGPoint{};
    }
    std::string focused() {
        app.settle();
        auto& tree = app.scene().accessibility();
        tree.update();
        const auto* const node = tree.node(tree.focusedNode());
        return node ? node->name : "";
    }

    std::shared_ptr<PSSpecifier> listBefore;
};

TEST_F(ReloadUnderAFinger, APressThatBeganBeforeTheAnswerStillActs) {
    showUnanswered(2);
    app.touches().press(middleOf("Restart Daemons"));
    app.touches().wait(0.1);

    answer();
    app.touches().release();

    ASSERT_TRUE(daemon->waitForConnections(2));
    EXPECT_EQ(hex(daemon->connections()[1]).substr(0, 11), "03 00 00 00");
}

TEST_F(ReloadUnderAFinger, ASwitchThatIsBeingTappedIsStored) {
    showUnanswered(1);
    const auto* const row = app.find("Ambient LED Color");
    ASSERT_TRUE(row);
    app.touches().press({CGRectGetMaxX(row->extent) - 40, CGRectGetMidY(row->extent)});
    app.touches().wait(0.1);

    answer();
    app.touches().release();
    app.settle();

    EXPECT_TRUE(app.preference("JVNAmbientColorKey").boolValue());
}

TEST_F(ReloadUnderAFinger, ASwitchThatIsBuiltAnewWithEachReloadIsStoredToo) {
    showUnanswered(5);
    const auto* const row = app.find("Force Extended Gamepad");
    ASSERT_TRUE(row);
    app.touches().press({CGRectGetMaxX(row->extent) - 40, CGRectGetMidY(row->extent)});
    app.touches().wait(0.1);

    answer();
    app.touches().release();
    app.settle();

    EXPECT_TRUE(app.preference("JVNForceExtendedGamepad").boolValue());
}

TEST_F(ReloadUnderAFinger, ARowThatSaysSomethingElseByNowIsNotWhatWasTapped) {
    showUnanswered(2, /*mode=*/1, /*state=*/0);
    app.touches().press(middleOf("Connect Controller"));
    app.touches().wait(0.1);

    answer();
    ASSERT_TRUE(app.find("Disconnect Controller"));
    app.touches().release();
    app.settle();

    EXPECT_TRUE(page->controllerConnected());
    EXPECT_TRUE(daemon->waitForConnections(1)); // it may take note of it after the page has
    EXPECT_EQ(daemon->connectionCount(), 1u) << "the query alone";
}

TEST_F(ReloadUnderAFinger, TheKeyboardStaysOnEachRow) {
    for (const char* const name : {"Force Extended Gamepad", "Pair Controller", "Restart Daemons", "Connection"}) {
        showUnanswered(5);
        const auto* node = app.find(name);
        ASSERT_TRUE(node) << name;
        auto& tree = app.scene().accessibility();
        // Of a row with a switch it is the switch that has the focus.
        const auto target = tree.canAct(node->identity) && node->isFocusable ? node->identity : node->children.at(0);
        ASSERT_TRUE(tree.focus(target)) << name;
        ASSERT_EQ(focused(), name);

        answer();

        EXPECT_EQ(focused(), name);
        app.close();
    }
}

TEST_F(ReloadUnderAFinger, AReturnKeyThatWentDownBeforeTheAnswerStillActs) {
    showUnanswered(2);
    const auto* const node = app.find("Restart Daemons");
    ASSERT_TRUE(node);
    ASSERT_TRUE(app.scene().accessibility().focus(node->identity));
    app.touches().keyDown(seat::hid::enter);

    answer();
    app.touches().keyUp(seat::hid::enter);
    app.settle();

    ASSERT_TRUE(daemon->waitForConnections(2));
    EXPECT_EQ(hex(daemon->connections()[1]).substr(0, 11), "03 00 00 00");
}

} // namespace
