// A daemon that is away, and a system that refuses what a connection needs.

#include "tests/settings/connection_test.h"
#include "tests/support/descriptors.h"

#include <cerrno>

namespace {

class DaemonAway : public Connection {
protected:
    void sendEveryCommand() {
        page->queryControllerConnected();
        page->connectController(page->connectSpecifier());
        page->updateDS4ColorWithSocket(-1);
        page->restartDaemons();
    }
};

TEST_F(DaemonAway, IsAnnouncedByEveryCommandButTheRestartAndLeavesNothingOpen) {
    show(1, 1);
    ASSERT_TRUE(app.waitUntil([&] { return failures == 1; }));
    const std::size_t before = testing_support::openDescriptors();

    sendEveryCommand();

    EXPECT_EQ(testing_support::openDescriptors(), before);
    EXPECT_TRUE(app.waitUntil([&] { return failures == 4; }));
    EXPECT_EQ(app.alert(), "Important!\nA critical error has occurred! Please reboot your device in order to continue "
                           "using Joyvane.");
    EXPECT_TRUE(rowIsEnabled());
    EXPECT_EQ(initialisations, 0);
}

TEST_F(DaemonAway, IsWhatASocketThatCannotBeMadeOrConnectedMeans) {
    for (const auto call : {SystemCall::Socket, SystemCall::Connect}) {
        start(answering(reply(0, 7), {}));
        failures = 0;
        show(1, 1);
        ASSERT_TRUE(app.waitUntil([&] { return daemon->connectionCount() == 1 && rowIsEnabled(); }));
        const std::size_t before = testing_support::openDescriptors();

        SystemCalls calls;
        calls.fail(call, EMFILE, /*times=*/1000);
        sendEveryCommand();

        EXPECT_EQ(testing_support::openDescriptors(), before);
        EXPECT_TRUE(app.waitUntil([&] { return failures == 3; }));
        EXPECT_TRUE(app.dismissAlert()) << "the restart's";
        EXPECT_EQ(daemon->connectionCount(), 1u) << "the first query alone";
        app.close();
    }
}

TEST_F(DaemonAway, AConnectWhoseTimeoutCannotBeSetSendsNothingAndLeavesTheRowDisabled) {
    start(answering(reply(0, 7), reply(8, 0)));
    showSettled(1, true);

    SystemCalls calls;
    calls.fail(SystemCall::SetOption, EINVAL);
    ASSERT_TRUE(app.tap("Connect Controller"));
    ASSERT_TRUE(daemon->waitForConnections(2));
    app.settle();

    EXPECT_EQ(hex(daemon->connections()[1]), "");
    EXPECT_FALSE(rowIsEnabled());
    EXPECT_EQ(initialisations, 0);
    EXPECT_EQ(failures, 0);
    page->viewWillAppear(false);
    EXPECT_TRUE(app.waitUntil([&] { return rowIsEnabled(); })) << "when the page comes into view again";
}

TEST_F(DaemonAway, AnAddressThatIsStoredWhileThePageIsShownCountsAtTheNextTap) {
    start(answering(reply(0, 7), reply(8, 0)));
    showSettled(2, false);
    ASSERT_TRUE(app.tap("Connect Controller"));
    ASSERT_TRUE(app.dismissAlert());
    ASSERT_TRUE(daemon->waitForConnections(2)) << "the one of the tap, on which nothing was sent";
    app.writePreferences(testing_support::dictionary({{"controller_type", NSNumber::numberWithInteger(2)},
                                                      {"connection_mode", NSNumber::numberWithInteger(1)},
                                                      {"PS4BluetoothAddress", NSData::dataWithBytes(address)}}));

    EXPECT_EQ(exchange(), "01 00 00 00 02 00 00 00 00 00 00 00 11 22 33 44 55 66 00 00");
}

} // namespace
