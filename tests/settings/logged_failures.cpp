// Whoever looks into the log finds one line for each thing that went wrong, with what was done and why it failed.

#include "system/process/tool_listener.h"
#include "tests/settings/connection_test.h"
#include "tests/settings/pairing_test.h"

#include <cerrno>

namespace {

class LoggedExchange : public Connection {
protected:
    // A connect that the daemon ends with these bytes; gives the lines that it left.
    std::vector<std::string> connectAnsweredWith(const Bytes& answer) {
        start([answer](DaemonPeer& peer) {
            const Bytes head = peer.read(12);
            if (head.size() < 12) return;
            if (head[0] == 5) return peer.write(reply(0, 7));
            peer.read(8);
            peer.write(answer);
            if (answer.size() < 12) return;
            peer.readToEnd();
        });
        showSettled(2, true);
        const std::size_t before = log.all().size();
        exchange();
        return since(before);
    }
    std::vector<std::string> since(std::size_t before) const {
        const auto lines = log.all();
        return {lines.begin() + static_cast<std::ptrdiff_t>(before), lines.end()};
    }
    using Lines = std::vector<std::string>;
};

TEST_F(LoggedExchange, AnAnswerThatIsCutShort) {
    EXPECT_EQ(connectAnsweredWith({8, 0, 0, 0, 0, 0}),
              Lines{"connect: waiting for the daemon's answer: it was cut short"});
}

TEST_F(LoggedExchange, AConnectionThatIsClosedInsteadOfAnAnswer) {
    EXPECT_EQ(connectAnsweredWith({}),
              Lines{"connect: waiting for the daemon's answer: it closed the connection instead"});
}

TEST_F(LoggedExchange, ARefusalWithItsReason) {
    EXPECT_EQ(connectAnsweredWith({9, 0, 0, 0, 4, 0, 0, 0, 0, 0, 0, 0}),
              Lines{"connect: asking the daemon: it refuses, with answer 9 and reason 4"});
}

TEST_F(LoggedExchange, AnAcceptedConnectLeavesNoLine) { EXPECT_EQ(connectAnsweredWith(reply(8, 0)), Lines{}); }

TEST_F(LoggedExchange, ASilentDaemonThatIsAsked) {
    start([](DaemonPeer& peer) { peer.readToEnd(); });
    show(2, 1);

    EXPECT_TRUE(
        app.waitUntil([&] { return log.count("query: waiting for the daemon's answer: none came in time") == 1; }));
    EXPECT_EQ(log.all().size(), 1u);
}

TEST_F(LoggedExchange, ADaemonThatClosesWithoutAnAnswerIsNotConnectedAndNoFailure) {
    start([](DaemonPeer& peer) { peer.read(12); });
    showSettled(2, true);

    EXPECT_EQ(log.all(), Lines{});
}

TEST_F(LoggedExchange, EachCallThatFails) {
    start(answering(reply(0, 7), reply(8, 0)));
    showSettled(2, true);
    const std::pair<SystemCall, const char*> calls[] = {
        {SystemCall::Socket, "making a socket for /Library/Caches/jvncontrol.sock: Cannot allocate memory"},
        {SystemCall::Receive, "connect: waiting for the daemon's answer: Cannot allocate memory"},
        {SystemCall::SetOption, "setting the time-out of the connection to the daemon: Cannot allocate memory"}};
    for (const auto& [call, line] : calls) {
        const std::size_t before = log.all().size();
        page->setControllerConnected(false);
        SystemCalls failing;
        failing.fail(call, ENOMEM);
        ASSERT_TRUE(app.tap("Connect Controller"));
        EXPECT_TRUE(app.waitUntil([&] { return log.all().size() > before; })) << line;
        app.waitUntil([&] { return rowIsEnabled(); }, call == SystemCall::SetOption ? 0.2 : 10);
        EXPECT_EQ(since(before), Lines{line});
        page->viewWillAppear(false); // a row that was left disabled
        ASSERT_TRUE(app.waitUntil([&] { return rowIsEnabled() && app.find("Connect Controller"); }));
    }
}

TEST_F(LoggedExchange, ASendThatFails) {
    start(answering(reply(0, 7), {}));
    showSettled(2, true);

    SystemCalls failing;
    failing.fail(SystemCall::Send, ENOMEM);
    ASSERT_TRUE(app.tap("Restart Daemons"));

    EXPECT_EQ(log.all(), Lines{"restart of the daemons: sending to the daemon: Cannot allocate memory"});
}

class LoggedTool : public Pairing {
protected:
    void pairWith(const std::string& body) {
        installTool(body);
        showWithServer(1);
        ASSERT_TRUE(app.tap("Pair Controller"));
    }
};

TEST_F(LoggedTool, OneThatEndsAtOnce) {
    pairWith("exit 3\n");
    EXPECT_TRUE(
        app.waitUntil([&] { return log.count("jvndiscovery (process ") == 1 && log.count("it ended with 3") == 1; }));
}

TEST_F(LoggedTool, OneThatEndsAtOnceWithoutAReportThoughItSaysThatAllWentWell) {
    std::vector<std::string> told;
    seat::setToolListener([&](const std::string& path, const std::string& reason) {
        if (!reason.empty()) told.push_back(path + ": " + reason);
    });
    pairWith("exit 0\n");
    EXPECT_TRUE(app.waitUntil([&] { return !told.empty(); }));
    seat::setToolListener({});
    app.settle();
    const std::string reason = "it ended with 0 and has reported nothing";
    EXPECT_EQ(log.count("jvndiscovery"), 1u);
    EXPECT_EQ(log.count("run /usr/bin/jvndiscovery: " + reason), 1u);
    EXPECT_EQ(told, std::vector<std::string>{"/usr/bin/jvndiscovery: " + reason});
}

TEST_F(LoggedTool, OneThatHasReportedOrWasInterruptedLeavesNoLine) {
    startPairing(1);
    ASSERT_TRUE(app.tap("Pair Controller")); // the first one is interrupted, and ends with 0
    ASSERT_TRUE(app.waitUntil([&] { return count("interrupted") == 1 && count("started") == 2; }));
    report(0);
    page->killDiscoveryTask();
    ASSERT_TRUE(app.waitUntil([&] { return count("interrupted") == 2; }));

    installTool("while [ ! -e \"$0.go\" ]; do sleep 0.01; done\n");
    ASSERT_TRUE(app.tap("Pair Controller"));
    report(4);
    const std::ofstream made(app.root() + "/usr/bin/jvndiscovery.go");
    const int tool = page->discoveryTask()->processIdentifier();
    ASSERT_TRUE(app.waitUntil([&] { return platform::kill(tool, 0) != 0; }));
    app.waitUntil([] { return false; }, 0.3); // longer, on the held clock, than a last report is waited for
    EXPECT_EQ(log.count("jvndiscovery"), 0u);
}

TEST_F(LoggedTool, OneThatCrashes) {
    pairWith("kill -SEGV $$\n");
    EXPECT_TRUE(app.waitUntil([&] { return log.count("it was ended by signal 11") == 1; }));
}

TEST_F(LoggedTool, OneThatIsMissing) {
    showWithServer(1);
    ASSERT_TRUE(app.tap("Pair Controller"));
    EXPECT_EQ(log.count("launch /usr/bin/jvndiscovery: "), 1u);
}

} // namespace
