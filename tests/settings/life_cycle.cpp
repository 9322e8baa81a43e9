// What the page does when it is loaded, comes into view and leaves, and where its pairing row leads.

#include "keymap/JVNKeymapViewController.h"
#include "kit/dispatch/main_queue.h"
#include "platform/uikit/UIViewController.h"
#include "tests/settings/PageTest.h"
#include "tests/support/LoggedLines.h"
#include "tests/support/SystemCalls.h"
#include "tests/support/descriptors.h"

#include <atomic>
#include <functional>

namespace {

using testing_support::Bytes;
using testing_support::DaemonPeer;
using testing_support::hex;
using testing_support::ScriptedDaemon;

// Tells of each reload of its rows.
class ToldPage final : public JoyvaneListController {
    NS_CLASS(ToldPage)
    void reloadSpecifiers() override {
        if (reloading) reloading();
        JoyvaneListController::reloadSpecifiers();
    }
    std::function<void()> reloading;
};
NS_CLASS_IMPLEMENTATION(ToldPage, JoyvaneListController)

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

TEST_F(LifeCycle, ComingIntoViewAsksTheDaemonBeforeTheRowsAreReloaded) {
    store(1, 1);
    const auto told = ToldPage::alloc();
    page = told->init();
    std::vector<std::size_t> askedBefore; // without a daemon each attempt leaves a line
    told->reloading = [&] { askedBefore.push_back(log.count("connect /Library/Caches/jvncontrol.sock")); };

    app.open(page);

    told->reloading = nullptr;
    EXPECT_EQ(askedBefore, (std::vector<std::size_t>{0, 1})) << "loaded, then appearing";
}

TEST_F(LifeCycle, AnAnsweredQueryHasClosedItsConnectionWhenTheRowsAreReloaded) {
    ScriptedDaemon daemon(app.root(), [](DaemonPeer& peer) {
        peer.read(12);
        peer.write(Bytes(12, 0));
        peer.waitForRelease();
    });
    store(1, 1);
    const auto told = ToldPage::alloc();
    page = told->init();
    app.open(page);
    ASSERT_TRUE(app.waitUntil([&] { return page->connectSpecifier()->name() == "Disconnect Controller"; }));
    daemon.release();
    ASSERT_TRUE(daemon.waitForConnections(1));
    const std::size_t before = testing_support::openDescriptors();
    std::size_t atReload = 0;
    told->reloading = [&] { atReload = testing_support::openDescriptors(); };

    page->queryControllerConnected();

    EXPECT_TRUE(app.waitUntil([&] { return atReload != 0; }));
    told->reloading = nullptr;
    EXPECT_EQ(atReload, before + 1) << "the daemon's end alone";
    daemon.release();
}

TEST_F(LifeCycle, AnAnsweredQueryHasClosedItsConnectionBeforeItsCompletionIsQueued) {
    ScriptedDaemon daemon(app.root(), [](DaemonPeer& peer) {
        peer.read(12);
        peer.write(Bytes(12, 0));
        peer.readToEnd();
    });
    show(1, 1);
    ASSERT_TRUE(app.waitUntil([&] { return page->connectSpecifier()->name() == "Disconnect Controller"; }));
    testing_support::SystemCalls calls;
    std::atomic<int> connection = -1;
    std::atomic<int> queuedBefore = -1;
    calls.before(testing_support::SystemCall::Connect, [&](int descriptor) { connection = descriptor; });
    calls.before(testing_support::SystemCall::Close, [&](int descriptor) {
        if (descriptor == connection) queuedBefore = seat::mainQueueIsEmpty() ? 0 : 1;
    });

    page->queryControllerConnected();

    // Meanwhile the main thread takes nothing from its queue.
    ASSERT_TRUE(daemon.waitForConnections(2));
    EXPECT_EQ(queuedBefore, 0);
}

TEST_F(LifeCycle, AReportedSuccessIsToldAlsoWhenThePageIsFreedMeanwhile) {
    show(1);
    page->handlePairingMessage_userInfo(
        "JVNDiscoveryUpdate", testing_support::dictionary({{"JVNDiscoveryState", NSNumber::numberWithInt(2)}}));
    const std::weak_ptr<JoyvaneListController> weak = page;
    page = nullptr;
    app.scene().window()->setRootViewController(nullptr);

    app.close();

    EXPECT_TRUE(app.alert());
    EXPECT_TRUE(weak.expired());
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

TEST_F(LifeCycle, TheKeymapEditorSlidesIn) {
    show(JVNControllerTypeKeyboard);

    page->pairController();

    EXPECT_TRUE(app.scene().isAnimating());
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
