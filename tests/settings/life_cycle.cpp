// What the page does when it is loaded, comes into view and leaves, and where its pairing row leads.

#include "keymap/JVNKeymapViewController.h"
#include "platform/uikit/UIViewController.h"
#include "tests/settings/page_test.h"
#include "tests/support/logged_lines.h"

namespace {

using testing_support::Bytes;
using testing_support::DaemonPeer;
using testing_support::hex;
using testing_support::ScriptedDaemon;

class LifeCycle : public PageTest {
protected:
    void store(long type, long mode) {
        app.writePreferences(testing_support::dictionary({{"controller_type", NSNumber::numberWithInteger(type)},
                                                          {"connection_mode", NSNumber::numberWithInteger(mode)}}));
    }
    std::shared_ptr<UIViewController> top() { return app.navigation()->topViewController(); }

    testing_support::LoggedLines log;
};

TEST_F(LifeCycle, LoadingTheViewPutsTheRowsInAndAsksNobody) {
    const ScriptedDaemon daemon(app.root());
    store(1, 1);
    page = JoyvaneListController::alloc()->init();

    page->view();

    EXPECT_EQ(rows(), "[Setup] | Controller | Connection | Connect Controller | Pair Controller | [DualShock 4] | "
                      "Ambient LED Color | Choose LED Color | [Help] | PS3 Pairing Instructions | Restart Daemons");
    EXPECT_FALSE(page->discoveryMessagingCenter());
    EXPECT_FALSE(daemon.waitForConnections(1, std::chrono::milliseconds(50)));
}

TEST_F(LifeCycle, TheFirstLookShowsWhatWasLastBelievedAndTheAnswerCorrectsIt) {
    for (const bool believed : {true, false}) {
        ScriptedDaemon daemon(app.root(), [believed](DaemonPeer& peer) {
            peer.read(12);
            peer.waitForRelease();
            if (!believed) peer.write(Bytes(12, 0));
        });
        store(1, 1);
        page = JoyvaneListController::alloc()->init();
        page->setControllerConnected(believed);
        app.open(page);
        EXPECT_TRUE(app.find(believed ? "Disconnect Controller" : "Connect Controller"));

        daemon.release();

        const std::string corrected = believed ? "Connect Controller" : "Disconnect Controller";
        EXPECT_TRUE(app.waitUntil([&] { return app.find(corrected); }));
        EXPECT_EQ(page->controllerConnected(), !believed);
        app.close();
    }
}

TEST_F(LifeCycle, ComingBackAsksAgainAndFollowsWhatIsStoredByThen) {
    ScriptedDaemon daemon(app.root(), [](DaemonPeer& peer) { peer.read(12); });
    show(1);
    ASSERT_TRUE(daemon.waitForConnections(1));
    app.navigation()->pushViewController_animated(UIViewController::alloc()->init(), false);
    store(6, 0);

    app.goBack();

    EXPECT_TRUE(app.find("Configure Keymap"));
    EXPECT_FALSE(app.find("Choose LED Color"));
    ASSERT_TRUE(daemon.waitForConnections(2));
    EXPECT_EQ(hex(daemon.connections()[1]), "05 00 00 00 00 00 00 00 00 00 00 00");
}

TEST_F(LifeCycle, TheRowIsDisabledUntilTheQueryIsAnswered) {
    ScriptedDaemon daemon(app.root(), [](DaemonPeer& peer) {
        peer.read(12);
        peer.waitForRelease();
        peer.write(Bytes(12, 0));
    });
    show(1, 1);
    daemon.release();
    ASSERT_TRUE(app.waitUntil([&] { return page->connectSpecifier()->name() == "Disconnect Controller"; }));
    app.navigation()->pushViewController_animated(UIViewController::alloc()->init(), false);
    app.goBack();
    const auto cell = page->connectSpecifier()->propertyForKey("cellObject").object<PSTableCell>();
    ASSERT_TRUE(cell);

    EXPECT_FALSE(cell->isUserInteractionEnabled()) << "the reload after the query brings the same cell back";
    EXPECT_FALSE(cell->textLabel()->isEnabled());
    daemon.release();
    EXPECT_TRUE(app.waitUntil([&] { return cell->isUserInteractionEnabled() && cell->textLabel()->isEnabled(); }));
}

TEST_F(LifeCycle, ThePairingRowOfAKeyboardOpensTheKeymapEditor) {
    show(JVNControllerTypeKeyboard);

    ASSERT_TRUE(app.tap("Configure Keymap"));

    EXPECT_TRUE(app.waitUntil([&] { return std::dynamic_pointer_cast<JVNKeymapViewController>(top()) != nullptr; }));
    EXPECT_FALSE(page->discoveryTask());
    EXPECT_FALSE(page->hud()->isShown());
    EXPECT_FALSE(page->discoveryMessagingCenter()) << "the page has left the screen";
}

TEST_F(LifeCycle, ThePairingRowOfEveryOtherTypeButAPS3ControllerStartsTheSearch) {
    for (const long type : {1, 2, 3, 4, 5, 7, -1}) {
        show(type);
        ASSERT_TRUE(app.tap("Pair Controller")) << type;
        EXPECT_TRUE(page->hud()->isShown()) << type;
        EXPECT_TRUE(page->discoveryTask()) << type;
        EXPECT_EQ(top(), page) << type;
        app.close();
    }
}

} // namespace
