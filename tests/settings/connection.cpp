// Connecting, disconnecting and asking, over a real socket: what the daemon gets, what the flag and the row become.

#include "tests/settings/connection_test.h"
#include "tests/support/Heartbeat.h"
#include "tests/support/descriptors.h"

#include <cerrno>

namespace {

TEST_F(Connection, QueryOnAppearanceSendsTwelveBytesAndClearsTheFlagWithoutAReply) {
    start(answering({}, {}));
    page = JoyvaneListController::alloc()->init();
    page->setControllerConnected(true);
    app.writePreferences(testing_support::dictionary({{"connection_mode", NSNumber::numberWithInteger(1)}}));
    app.open(page);

    ASSERT_TRUE(daemon->waitForConnections(1));
    EXPECT_TRUE(app.waitUntil([&] { return !page->controllerConnected(); }));
    EXPECT_TRUE(app.waitUntil([&] { return page->connectSpecifier()->name() == "Connect Controller"; }));
    EXPECT_EQ(hex(daemon->connections()[0]), "05 00 00 00 00 00 00 00 00 00 00 00");
    EXPECT_EQ(failures, 0);
}

TEST_F(Connection, QueryWithStateSevenLeavesTheFlagAsItWas) {
    for (const bool before : {false, true}) {
        start(answering(reply(0, 7), {}));
        page = JoyvaneListController::alloc()->init();
        page->setControllerConnected(before);
        app.open(page);
        ASSERT_TRUE(daemon->waitForConnections(1));
        ASSERT_TRUE(app.waitUntil([&] { return rowIsEnabled() && seat::mainQueueIsEmpty(); }));
        EXPECT_EQ(page->controllerConnected(), before);
        EXPECT_EQ(page->connectSpecifier()->name(), before ? "Disconnect Controller" : "Connect Controller");
        app.close();
    }
}

TEST_F(Connection, QueryWithAnyOtherStateSetsTheFlag) {
    for (const std::uint8_t state : {std::uint8_t(0), std::uint8_t(1), std::uint8_t(8), std::uint8_t(255)}) {
        start(answering(reply(0, state), {}));
        show(1, 1);
        EXPECT_TRUE(app.waitUntil([&] { return page->connectSpecifier()->name() == "Disconnect Controller"; }))
            << int(state);
        EXPECT_TRUE(page->controllerConnected());
        // And once more, with the flag set already.
        page->viewWillAppear(false);
        ASSERT_TRUE(daemon->waitForConnections(2));
        EXPECT_TRUE(app.waitUntil([&] { return rowIsEnabled() && seat::mainQueueIsEmpty(); }));
        EXPECT_TRUE(page->controllerConnected());
        EXPECT_EQ(page->connectSpecifier()->name(), "Disconnect Controller");
        app.close();
    }
}

TEST_F(Connection, QueryIsMadeForEveryTypeAndMode) {
    start(answering(reply(0, 7), {}));
    show(6, 0);

    EXPECT_TRUE(daemon->waitForConnections(1));
}

TEST_F(Connection, WithoutADaemonEachAppearancePostsTheFailureAndShowsNothing) {
    show(1, 1);

    EXPECT_TRUE(app.waitUntil([&] { return failures == 1; }));
    EXPECT_EQ(app.alert(), std::nullopt);
    EXPECT_TRUE(rowIsEnabled());
    EXPECT_FALSE(page->controllerConnected());
}

TEST_F(Connection, AQueryWhoseTimeoutCannotBeSetLeavesTheRowDisabled) {
    start(answering(reply(0, 0), {}));
    showSettled(1, true);
    page->setControllerConnected(false);

    SystemCalls calls;
    calls.fail(SystemCall::SetOption, EINVAL);
    page->queryControllerConnected();
    ASSERT_TRUE(daemon->waitForConnections(2));
    app.settle();

    EXPECT_FALSE(rowIsEnabled());
    EXPECT_EQ(hex(daemon->connections()[1]), "");
    EXPECT_FALSE(page->controllerConnected());
    page->viewWillAppear(false);
    EXPECT_TRUE(app.waitUntil([&] { return rowIsEnabled(); }));
}

TEST_F(Connection, AConnectThatIsAcceptedSendsTheColourOnTheSameConnection) {
    start(answering(reply(0, 7), reply(8, 0)));
    showSettled(1, true);

    EXPECT_EQ(exchange(), connectFrame + " 04 00 00 00 01 00 00 00 00 00 00 00 00 4e fd 00");

    EXPECT_TRUE(page->controllerConnected());
    EXPECT_TRUE(app.find("Disconnect Controller"));
    EXPECT_EQ(initialisations, 1);
}

TEST_F(Connection, AnAcceptedConnectSendsTheStoredColour) {
    start(answering(reply(0, 7), reply(8, 0)));
    show(1, 1, {{"PS4BluetoothAddress", NSData::dataWithBytes(address)}, {"JVNLEDColorKey", "ff7f01"}});
    ASSERT_TRUE(app.waitUntil([&] { return daemon->connectionCount() == 1 && rowIsEnabled(); }));

    EXPECT_EQ(exchange(), connectFrame + " 04 00 00 00 01 00 00 00 00 00 00 00 ff 7f 01 00");
}

TEST_F(Connection, AConnectOfAnotherTypeSendsNoColour) {
    start(answering(reply(0, 7), reply(8, 0)));
    showSettled(2, true);

    EXPECT_EQ(exchange(), "01 00 00 00 02 00 00 00 00 00 00 00 11 22 33 44 55 66 00 00");
    EXPECT_TRUE(page->controllerConnected());
}

TEST_F(Connection, AConnectThatIsRefusedEndsTheSessionAndLeavesTheFlag) {
    start(answering(reply(0, 7), {9, 0, 0, 0, 1, 2, 3, 4, 5, 6, 7, 8}));
    showSettled(1, true);

    EXPECT_EQ(exchange(), connectFrame + " 06 00 00 00 01 02 03 04 05 06 07 08");
    EXPECT_FALSE(page->controllerConnected());
    EXPECT_TRUE(app.find("Connect Controller"));
}

TEST_F(Connection, AReplyThatOnlyBeginsLikeAnAcceptanceIsNone) {
    for (std::size_t size = 0; size < 12; ++size) {
        Bytes cut = reply(8, 0);
        cut.resize(size);
        start([=](DaemonPeer& peer) {
            const Bytes head = peer.read(12);
            if (head.size() == 12 && head[0] == 1) {
                peer.read(8);
                peer.write(cut);
            }
        });
        showSettled(1, true);
        exchange();
        EXPECT_FALSE(page->controllerConnected()) << size << " bytes";
        app.close();
    }
}

TEST_F(Connection, DisconnectingSendsDisconnectAndEndSessionAndReadsNothing) {
    start(answering(reply(0, 0), {}));
    show(1, 1, {{"PS4BluetoothAddress", NSData::dataWithBytes(address)}});
    ASSERT_TRUE(app.waitUntil([&] { return page->connectSpecifier()->name() == "Disconnect Controller"; }));
    ASSERT_TRUE(daemon->waitForConnections(1)); // that query is noted
    daemon->setScript([](DaemonPeer& peer) { peer.readToEnd(); });

    EXPECT_EQ(exchange(), "00 00 00 00 01 00 00 00 00 00 00 00 06 00 00 00 01 00 00 00 00 00 00 00");
    EXPECT_FALSE(page->controllerConnected());
    EXPECT_TRUE(app.find("Connect Controller"));
    EXPECT_EQ(initialisations, 0);
}

TEST_F(Connection, WithoutAnAddressTheUserIsToldToPairAndNothingIsSent) {
    start(answering(reply(0, 7), {}));
    showSettled(1, false);

    ASSERT_TRUE(app.tap("Connect Controller"));

    EXPECT_EQ(app.alert(), "No controller!\nYou need to pair your controller first.");
    EXPECT_TRUE(rowIsEnabled());
    ASSERT_TRUE(daemon->waitForConnections(2));
    EXPECT_EQ(hex(daemon->connections()[1]), "");
}

TEST_F(Connection, AnAddressOfAnotherLengthOrKindIsNone) {
    const id wrong[] = {id(NSData::dataWithBytes(std::span(address).first(5))), id("abcdef"),
                        id(NSNumber::numberWithInteger(6)), id(NSData::dataWithVector(Bytes(7, 1)))};
    for (const auto& value : wrong) {
        start(answering(reply(0, 7), {}));
        show(1, 1, {{"PS4BluetoothAddress", value}});
        ASSERT_TRUE(app.waitUntil([&] { return daemon->connectionCount() == 1 && rowIsEnabled(); }));
        ASSERT_TRUE(app.tap("Connect Controller"));
        EXPECT_TRUE(app.alert());
        ASSERT_TRUE(app.dismissAlert());
        app.close();
    }
}

TEST_F(Connection, APS3ControllerNeedsNoAddressAndSendsNone) {
    start(answering(reply(0, 7), reply(8, 0)));
    showSettled(0, true);

    EXPECT_EQ(exchange(), "01 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00");
    EXPECT_TRUE(page->controllerConnected());
}

TEST_F(Connection, ATapWithoutADaemonPostsTheFailureAndNeverDisablesTheRow) {
    show(1, 1, {{"PS4BluetoothAddress", NSData::dataWithBytes(address)}});
    ASSERT_TRUE(app.waitUntil([&] { return failures == 1; }));

    ASSERT_TRUE(app.tap("Connect Controller"));

    EXPECT_TRUE(rowIsEnabled());
    EXPECT_TRUE(app.waitUntil([&] { return failures == 2; }));
    EXPECT_EQ(app.alert(), std::nullopt);
}

TEST_F(Connection, ATapOnDisconnectWithoutADaemonLeavesTheFlagAndTheRow) {
    start(answering(reply(0, 0), {}));
    show(1, 1, {{"PS4BluetoothAddress", NSData::dataWithBytes(address)}});
    ASSERT_TRUE(app.waitUntil([&] { return page->connectSpecifier()->name() == "Disconnect Controller"; }));
    daemon.reset();

    ASSERT_TRUE(app.tap("Disconnect Controller"));

    EXPECT_TRUE(rowIsEnabled());
    EXPECT_TRUE(app.waitUntil([&] { return failures == 1; }));
    EXPECT_TRUE(page->controllerConnected());
    EXPECT_TRUE(app.find("Disconnect Controller"));
    EXPECT_EQ(app.alert(), std::nullopt);
}

TEST_F(Connection, WithoutADaemonAMissingAddressIsNotSpokenOf) {
    show(1, 1);
    ASSERT_TRUE(app.tap("Connect Controller"));
    EXPECT_EQ(app.alert(), std::nullopt);
}

TEST_F(Connection, TheRowIsDisabledWhileAnExchangeRunsAndTheMainThreadIsNeverLate) {
    start([](DaemonPeer& peer) {
        const Bytes head = peer.read(12);
        if (head.size() == 12 && head[0] == 5) return;
        peer.waitForRelease();
    });
    showSettled(1, true);
    ASSERT_TRUE(app.tap("Connect Controller"));
    testing_support::Heartbeat heartbeat;

    ASSERT_TRUE(app.waitUntil([&] { return heartbeat.beats() > 40; }));
    EXPECT_FALSE(rowIsEnabled());
    EXPECT_FALSE(
        page->connectSpecifier()->propertyForKey("cellObject").object<PSTableCell>()->textLabel()->isEnabled());
    EXPECT_LT(heartbeat.longestMilliseconds(), 500);

    daemon->release();
    EXPECT_TRUE(app.waitUntil([&] { return rowIsEnabled(); }));
}

TEST_F(Connection, ADisabledRowTakesNoTap) {
    start([](DaemonPeer& peer) {
        const Bytes head = peer.read(12);
        if (head.size() == 12 && head[0] == 5) return;
        peer.waitForRelease();
    });
    showSettled(1, true);
    ASSERT_TRUE(app.tap("Connect Controller"));
    app.tap("Connect Controller");
    app.tap("Connect Controller");

    daemon->release();
    ASSERT_TRUE(app.waitUntil([&] { return rowIsEnabled(); }));
    ASSERT_TRUE(daemon->waitForConnections(2));
    EXPECT_EQ(daemon->connectionCount(), 2u) << "the query and one exchange";
}

TEST_F(Connection, TheEndOfAQueryDoesNotEnableTheRowDuringAConnect) {
    start([](DaemonPeer& peer) {
        const Bytes head = peer.read(12);
        if (head.size() < 12) return;
        if (head[0] == 5) return peer.write(reply(0, 7));
        if (head[0] != 1) return;
        peer.read(8);
        peer.waitForRelease();
        peer.write(reply(8, 0));
        peer.readToEnd();
    });
    showSettled(2, true);
    ASSERT_TRUE(app.tap("Connect Controller"));
    ASSERT_FALSE(rowIsEnabled());
    ASSERT_TRUE(app.tap("Connection"));
    app.goBack();
    const auto listBefore = page->specifierForID("connection_mode");

    // The query of this appearance gives up after its second, and its completion rebuilds the rows.
    ASSERT_TRUE(app.waitUntil([&] { return page->specifierForID("connection_mode") != listBefore; }));
    EXPECT_FALSE(rowIsEnabled());
    app.tap("Connect Controller");
    daemon->release();

    ASSERT_TRUE(app.waitUntil([&] { return rowIsEnabled(); }));
    ASSERT_TRUE(daemon->waitForConnections(3));
    EXPECT_TRUE(page->controllerConnected());
    EXPECT_TRUE(app.find("Disconnect Controller"));
    EXPECT_EQ(daemon->connectionCount(), 3u) << "two queries and one connect";
}

TEST_F(Connection, AThousandExchangesLeaveNoDescriptorNoThreadAndNoChild) {
    start(answering(reply(0, 7), reply(8, 0)));
    showSettled(1, true);
    const auto descriptors = testing_support::openDescriptors();
    const auto threads = testing_support::runningThreads();
    const auto children = testing_support::unreapedChildren();

    for (std::size_t i = 0; i < 1000; ++i) {
        page->connectController(page->connectSpecifier());
        ASSERT_TRUE(app.waitUntil([&] { return daemon->connectionCount() == i + 2 && rowIsEnabled(); }));
    }

    EXPECT_EQ(testing_support::openDescriptors(), descriptors);
    EXPECT_LE(testing_support::runningThreads(), threads + 1);
    EXPECT_EQ(testing_support::unreapedChildren(), children);
}

} // namespace
