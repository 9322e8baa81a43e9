// Pairing over a real bus with a real child, and restarting the daemons over a real socket.

#include "kit/uikit/hid_keys.h"
#include "platform/foundation/NSNotificationCenter.h"
#include "tests/settings/pairing_test.h"
#include "tests/support/descriptors.h"

#include <optional>

namespace {

using testing_support::ScriptedDaemon;

TEST_F(Pairing, StartsTheToolWithoutArgumentsAndShowsTheOverlay) {
    startPairing(1);

    EXPECT_EQ(overlay(), activating);
    EXPECT_EQ(toolLog(), "started 0 " + std::to_string(page->discoveryTask()->processIdentifier()) + "\n");
}

TEST_F(Pairing, EachTypeHasItsSearchingText) {
    const std::pair<long, std::string> texts[] = {
        {1, "Searching...\nPress both the Share and PS buttons until your PS4 controller blinks."},
        {2, "Searching..\nPress the red SYNC button on the back of your controller."},
        {3, "Searching...\nHold the X and the HOME buttons until the SEARCH light blinks."},
        {4, "Searching...\nHold the X and the HOME buttons until the SEARCH light blinks."},
        {5, "Searching...\nHold the X and the HOME buttons until the SEARCH light blinks."}};
    for (const auto& [type, text] : texts) {
        std::filesystem::remove(app.root() + "/usr/bin/jvndiscovery.log");
        startPairing(type);
        report(4);
        EXPECT_EQ(overlay(), "Starting Search...\nPrepare your controller.");
        report(0);
        EXPECT_EQ(overlay(), text) << type;
        app.close();
    }
}

TEST_F(Pairing, SearchingWithAnotherTypeLeavesTheText) {
    for (const long type : {0, 6, 7}) {
        showWithServer(type);
        page->pairPS4Controller();
        report(0);
        EXPECT_EQ(overlay(), activating) << type;
        report(4);
        EXPECT_EQ(overlay(), "Starting Search...\nPrepare your controller.") << type;
        app.close();
    }
}

TEST_F(Pairing, SuccessInterruptsTheToolShowsTheAlertAndHidesTheOverlay) {
    startPairing(1);

    report(2);

    EXPECT_EQ(app.alert(),
              "Joyvane\nSuccess!\nController paired, you can go into a game now and press PS when prompted "
              "to do so (turn it off now if it keeps blinking).");
    EXPECT_EQ(overlay(), "hidden");
    EXPECT_TRUE(app.waitUntil([&] { return count("interrupted") == 1; }));
    EXPECT_TRUE(app.dismissAlert());
}

TEST_F(Pairing, SuccessNamesTheButtonOfTheType) {
    const std::pair<long, std::string> names[] = {{0, "(null)"},   {1, "PS"},       {2, "SYNC"},   {3, "X + HOME"},
                                                  {4, "X + HOME"}, {5, "X + HOME"}, {6, "(null)"}, {7, "(null)"}};
    for (const auto& [type, name] : names) {
        showWithServer(type);
        report(2);
        EXPECT_EQ(app.alert(), "Joyvane\nSuccess!\nController paired, you can go into a game now and press " + name +
                                   " when prompted to do so (turn it off now if it keeps blinking).");
        app.dismissAlert();
        app.close();
    }
}

TEST_F(Pairing, InactiveBluetoothEndsTheSearchWithItsAlert) {
    startPairing(3);

    report(3);

    EXPECT_EQ(app.alert(),
              "Joyvane\nBTstack was not activated! Please try going to BTstack preferences and activate it.");
    EXPECT_EQ(overlay(), "hidden");
    EXPECT_TRUE(app.waitUntil([&] { return count("interrupted") == 1; }));
}

TEST_F(Pairing, OtherStatesChangeNothing) {
    startPairing(1);
    for (const int state : {1, 5, 6, 100, -1, -2147483647}) {
        report(state);
        EXPECT_EQ(overlay(), activating) << state;
        EXPECT_EQ(app.alert(), std::nullopt) << state;
    }
    EXPECT_EQ(count("interrupted"), 0u);
}

TEST_F(Pairing, StateAndTypeAreThoseOfTheArrival) {
    showWithServer(1);
    page->handlePairingMessage_userInfo(
        "JVNDiscoveryUpdate", testing_support::dictionary({{"JVNDiscoveryState", NSNumber::numberWithInt(2)}}));
    EXPECT_EQ(app.scene().window()->subviews().size(), 1u) << "nothing is shown inside the server's own dispatch";
    app.writePreferences(testing_support::dictionary({{"controller_type", NSNumber::numberWithInteger(2)}}));

    const auto alert = app.alert();
    ASSERT_TRUE(alert);
    EXPECT_NE(alert->find("press PS when"), std::string::npos);
}

TEST_F(Pairing, ASecondTapInterruptsTheFirstToolBeforeTheSecondStarts) {
    startPairing(1);
    const int first = page->discoveryTask()->processIdentifier();

    ASSERT_TRUE(app.tap("Pair Controller"));

    EXPECT_NE(page->discoveryTask()->processIdentifier(), first);
    ASSERT_TRUE(app.waitUntil([&] { return count("started") == 2 && count("interrupted") == 1; }));
    EXPECT_EQ(overlay(), activating);
}

TEST_F(Pairing, TheReturnKeyOnTheRowStartsTheSearchAnew) {
    startPairing(1);
    const auto* const row = app.find("Pair Controller");
    ASSERT_TRUE(row);
    ASSERT_TRUE(app.scene().accessibility().focus(row->identity));

    app.touches().key(seat::hid::enter);

    EXPECT_TRUE(app.waitUntil([&] { return count("started") == 2 && count("interrupted") == 1; }));
}

TEST_F(Pairing, AnAssistivePressOnTheRowStartsTheSearchAnew) {
    startPairing(1);
    const auto* const row = app.find("Pair Controller");
    ASSERT_TRUE(row);

    EXPECT_TRUE(app.scene().accessibility().press(row->identity));

    EXPECT_TRUE(app.waitUntil([&] { return count("started") == 2 && count("interrupted") == 1; }));
}

TEST_F(Pairing, AnotherScreenCanBeOpenedDuringASearchAndEndsIt) {
    startPairing(1);

    ASSERT_TRUE(app.tap("Controller"));

    EXPECT_TRUE(app.waitUntil([&] { return count("interrupted") == 1; }));
    EXPECT_NE(app.navigation()->topViewController(), page);
}

TEST_F(Pairing, TheBackgroundInterruptsTheToolAndHidesTheOverlay) {
    startPairing(1);

    NSNotificationCenter::defaultCenter()->postNotificationName_object(UIApplicationDidEnterBackgroundNotification,
                                                                       nullptr);

    EXPECT_EQ(overlay(), "hidden");
    EXPECT_TRUE(app.waitUntil([&] { return count("interrupted") == 1; }));
}

TEST_F(Pairing, LeavingThePageStopsTheServerAndTheToolAndKeepsTheOverlay) {
    startPairing(1);

    app.navigation()->pushViewController_animated(UIViewController::alloc()->init(), false);

    EXPECT_FALSE(page->discoveryMessagingCenter());
    EXPECT_TRUE(app.waitUntil([&] { return count("interrupted") == 1 && !peer.nameHasOwner(server); }));
    EXPECT_EQ(overlay(), activating);
    app.goBack();
    EXPECT_TRUE(app.waitUntil([&] { return peer.nameHasOwner(server); }));
    EXPECT_EQ(overlay(), activating);
}

TEST_F(Pairing, LeavingThePageGivesUpTheServerAndItsMessageWhoeverElseHoldsTheCenter) {
    showWithServer(1);
    const auto center = page->discoveryMessagingCenter();

    app.navigation()->pushViewController_animated(UIViewController::alloc()->init(), false);
    EXPECT_TRUE(app.waitUntil([&] { return !peer.nameHasOwner(server); }));

    center->runServerOnCurrentThread();
    ASSERT_TRUE(app.waitUntil([&] { return peer.nameHasOwner(server); }));
    std::optional<bool> taken;
    seat::sendMessage(server, "JVNDiscoveryUpdate",
                      testing_support::dictionary({{"JVNDiscoveryState", NSNumber::numberWithInt(2)}}),
                      [&](bool delivered) { taken = delivered; });
    ASSERT_TRUE(app.waitUntil([&] { return taken.has_value(); }));
    EXPECT_EQ(taken, false);
    EXPECT_EQ(app.alert(), std::nullopt);
}

TEST_F(Pairing, FreeingAPageThatWasNeverShownInterruptsTheTool) {
    installTool();
    app.writePreferences(testing_support::dictionary({{"controller_type", NSNumber::numberWithInt(1)}}));
    page = JoyvaneListController::alloc()->init();
    page->pairController();
    ASSERT_TRUE(app.waitUntil([&] { return count("started") == 1; }));
    const std::weak_ptr<JoyvaneListController> weak = page;

    page = nullptr;

    EXPECT_TRUE(weak.expired());
    EXPECT_TRUE(app.waitUntil([&] { return count("interrupted") == 1; }));
}

TEST_F(Pairing, TheEndOfTheWindowFreesThePageAndInterruptsTheTool) {
    startPairing(1);
    const std::weak_ptr<JoyvaneListController> weak = page;

    page = nullptr;
    app.close();

    // Leaving and the end both interrupt; a tool that is slow to end notes both.
    EXPECT_TRUE(app.waitUntil([&] { return weak.expired() && count("interrupted") >= 1; }));
}

TEST_F(Pairing, AToolThatIsMissingLeavesTheOverlayAndThePage) {
    showWithServer(1);

    ASSERT_TRUE(app.tap("Pair Controller"));

    EXPECT_EQ(overlay(), activating);
    ASSERT_TRUE(page->discoveryTask());
    EXPECT_EQ(page->discoveryTask()->processIdentifier(), 0);
    page->killDiscoveryTask();
    EXPECT_EQ(overlay(), "hidden");
}

TEST_F(Pairing, AHundredPairingsLeaveNoDescriptorNoThreadAndNoZombie) {
    installTool("exit 0\n");
    showWithServer(1);
    page->pairController();
    app.waitUntil([&] { return platform::kill(page->discoveryTask()->processIdentifier(), 0) == -1; });
    const auto descriptors = testing_support::openDescriptors();
    const auto threads = testing_support::runningThreads();
    const auto children = testing_support::unreapedChildren();

    for (int i = 0; i < 100; ++i) {
        page->pairController();
        ASSERT_NE(page->discoveryTask()->processIdentifier(), 0);
        ASSERT_TRUE(app.waitUntil([&] { return platform::kill(page->discoveryTask()->processIdentifier(), 0) == -1; }));
    }

    // No more than before: what keeps guard over a tool ends a moment after it.
    EXPECT_TRUE(app.waitUntil([&] { return testing_support::unreapedChildren() <= children; })) << "beside the bus";
    EXPECT_LE(testing_support::openDescriptors(), descriptors);
    EXPECT_LE(testing_support::runningThreads(), threads);
}

class Restarting : public PageTest {};

TEST_F(Restarting, SendsTwentyBytesAndShowsNothing) {
    ScriptedDaemon daemon(app.root(), [](testing_support::DaemonPeer& peer) {
        const auto head = peer.read(12);
        if (!head.empty() && head[0] == 5) peer.write(testing_support::Bytes(12, 0));
        peer.readToEnd();
    });
    show(1);
    // The answer to the query rebuilds the rows, and a finger that is down just then taps nothing.
    ASSERT_TRUE(app.waitUntil([&] { return page->connectSpecifier()->name() == "Disconnect Controller"; }));

    ASSERT_TRUE(app.tap("Restart Daemons"));

    ASSERT_TRUE(daemon.waitForConnections(2));
    EXPECT_EQ(testing_support::hex(daemon.connections()[1]),
              "03 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00");
    EXPECT_EQ(app.alert(), std::nullopt);
}

TEST_F(Restarting, WithoutADaemonShowsTheAlert) {
    const testing_support::LoggedLines quiet;
    show(1);

    ASSERT_TRUE(app.tap("Restart Daemons"));

    EXPECT_EQ(app.alert(), "Important!\nA critical error has occurred! Please reboot your device in order to continue "
                           "using Joyvane.");
}

} // namespace
