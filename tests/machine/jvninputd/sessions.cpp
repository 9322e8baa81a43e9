#include "tests/machine/jvninputd/PlayingTest.h"
#include "tests/machine/support/LoginSession.h"
#include "tests/machine/support/Program.h"

#include <csignal>

namespace machine {
namespace {

// The system's own login manager says who sits at the seat. Clients of users are jvninput, as these users.
class Sessions : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(run({"sh", "-c",
                       "cat >/tmp/keymap.plist <<'END'\n"
                       "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                       "<plist version=\"1.0\"><dict><key>26</key><integer>3</integer></dict></plist>\n"
                       "END\nchmod 644 /tmp/keymap.plist"})
                      .status,
                  0);
    }
    std::vector<std::string> client(const std::string& command) const {
        std::vector<std::string> words{JVNINPUT_PROGRAM, "--socket", service.socket(), command};
        if (command == "try") words.emplace_back("/tmp/keymap.plist");
        return words;
    }
    bool padIsThere() { return !eventNodes(padName).empty(); }

    InputService service;
    // A login may take longer than the service stays without anybody.
    InputClient stays{service.socket(), input::Role::observe};
    VirtualKeyboard keyboard;
};

TEST_F(Sessions, AUserWithoutASessionAtTheSeatIsRefused) {
    const Ended ended = run(client("show"), kBert);
    EXPECT_EQ(ended.status, 1);
    EXPECT_NE(ended.output.find("session at this computer's seat"), std::string::npos) << ended.output;
}

TEST_F(Sessions, ALockedSessionGivesEverythingBackAtOnceAndPlaysAgainWhenItIsUnlocked) {
    LoginSession& session = LoginSession::ofAnna();
    Program trial(client("try"), kAnna);
    ASSERT_TRUE(trial.waitForOutput("waiting for a game")) << trial.output() << service.log();
    EventReader everybody(keyboard.node());
    {
        EventReader game = EventReader::ofDevice(padName);
        ASSERT_TRUE(trial.waitForOutput("playing")) << trial.output();
        keyboard.press(KEY_W);
        EXPECT_EQ(game.nextText(), "EV_ABS 17 -1");
        session.lock();
        EXPECT_TRUE(waitUntil([&] { return game.gone(); }));
    }
    EXPECT_TRUE(trial.waitForOutput("the session is locked")) << trial.output();
    EXPECT_TRUE(waitUntil([&] { return !everybody.grabbedByOthers(); }));
    keyboard.release(KEY_W);

    session.unlock();
    EXPECT_FALSE(waitForEventNode(padName).empty());
    EventReader game = EventReader::ofDevice(padName);
    EXPECT_TRUE(waitUntil([&] { return everybody.grabbedByOthers(); }));
    keyboard.press(KEY_W);
    EXPECT_EQ(game.nextText(), "EV_ABS 17 -1");
}

TEST_F(Sessions, OnlyTheUserInFrontPlays) {
    LoginSession& anna = LoginSession::ofAnna();
    Program hers(client("try"), kAnna);
    ASSERT_TRUE(hers.waitForOutput("waiting for a game")) << hers.output();
    LoginSession bert(kBert, 3);
    EXPECT_TRUE(hers.waitForOutput("another session is in front")) << hers.output();
    EXPECT_TRUE(waitForNoEventNode(padName));

    Program his(client("try"), kBert);
    EXPECT_TRUE(his.waitForOutput("waiting for a game")) << his.output();
    EXPECT_FALSE(waitForEventNode(padName).empty());
    his.signal(SIGKILL);
    anna.bringToFront();
    EXPECT_TRUE(waitUntil([&] { return hers.output().rfind("waiting for a game") > hers.output().rfind("in front"); }));
}

TEST_F(Sessions, WhoLogsOutIsRefused) {
    LoginSession& session = LoginSession::ofAnna();
    Program hers(client("watch"), kAnna);
    ASSERT_TRUE(hers.waitForOutput("no keyboard is to play")) << hers.output();
    session.logOut();
    EXPECT_TRUE(hers.waitForEnd().has_value());
    EXPECT_NE(hers.output().find("session at this computer's seat"), std::string::npos) << hers.output();
}

} // namespace
} // namespace machine
