// The package's life on a person's computer, from its installation to its removal, in this order. Each step leaves what
// the next one finds; a step that is run alone brings the computer there first.
#include "tests/machine/system/Computer.h"

#include <algorithm>
#include <csignal>
#include <gtest/gtest.h>

namespace machine {
namespace {

// A pad that is gone, and one that has come back, are two lines of the game.
constexpr const char* comes = "pad";
constexpr const char* goes = "no pad";

class Installed : public ::testing::Test {
protected:
    static void SetUpTestSuite() { s_computer = new Computer; }
    static void TearDownTestSuite() { delete s_computer; }

    // From wherever the step before has left off.
    void bePlaying() {
        if (!computer().isInstalled()) ASSERT_EQ(computer().install(JOYVANE_PACKAGE).status, 0);
        if (computer().settings().empty()) ASSERT_EQ(computer().choose("Keyboard").status, 0);
        computer().startGame();
        ASSERT_TRUE(computer().gameHears(comes)) << computer().gameSaid();
        ASSERT_TRUE(computer().plays()) << computer().gameSaid();
    }
    void TearDown() override { computer().endGame(); }

    static Computer& computer() { return *s_computer; }
    static std::string mainProcess() {
        const auto found = Computer::processes("jvninputd");
        return found.empty() ? "" : found.front();
    }

    static Computer* s_computer;
    static std::vector<std::string> s_filesBefore;
};
Computer* Installed::s_computer = nullptr;
std::vector<std::string> Installed::s_filesBefore;

TEST_F(Installed, InstallingOpensTwoSocketsAndStartsNothing) {
    s_filesBefore = computer().files();

    const Ended ended = computer().install(JOYVANE_PACKAGE);

    ASSERT_EQ(ended.status, 0) << ended.output;
    EXPECT_EQ(Computer::systemUnit("jvninputd.socket"), "active");
    EXPECT_EQ(Computer::annasUnit("jvnd.socket"), "active") << ended.output;
    EXPECT_EQ(Computer::systemUnit("jvninputd.service"), "inactive");
    EXPECT_EQ(Computer::annasUnit("jvnd.service"), "inactive");
    for (const char* name : {"jvnd", "jvninputd", "jvndiscovery", "joyvane-settings"})
        EXPECT_TRUE(Computer::processes(name).empty()) << name;
}

TEST_F(Installed, SheOpensThePageChoosesKeyboardStartsAGameAndPlays) {
    const Ended chosen = computer().choose("Keyboard");
    ASSERT_EQ(chosen.status, 0) << chosen.output;

    computer().startGame();
    ASSERT_TRUE(computer().gameHears(comes)) << computer().gameSaid();

    EXPECT_TRUE(computer().plays()) << computer().gameSaid();
    computer().endGame();
    EXPECT_TRUE(computer().keyboardIsFree());
}

TEST_F(Installed, LockedOrWithSomebodyElseInFrontTheKeyboardIsAKeyboardAndPlaysAgainWhenSheIsBack) {
    bePlaying();

    Computer::setLocked(true);
    EXPECT_TRUE(computer().gameHears(goes)) << computer().gameSaid();
    EXPECT_TRUE(computer().keyboardIsFree());
    Computer::setLocked(false);
    EXPECT_TRUE(computer().gameHears(comes)) << computer().gameSaid();
    EXPECT_TRUE(computer().plays()) << computer().gameSaid();

    Computer::letBertIn();
    EXPECT_TRUE(computer().gameHears(goes)) << computer().gameSaid();
    EXPECT_TRUE(computer().keyboardIsFree());
    Computer::letAnnaBack();
    EXPECT_TRUE(computer().gameHears(comes)) << computer().gameSaid();
    EXPECT_TRUE(computer().plays()) << computer().gameSaid();
}

TEST_F(Installed, BertWhoNeverOpenedThePageHasNoFoldersOfIt) {
    EXPECT_TRUE(waitUntil(
        [] {
            return run({"systemctl", "is-active", "user@1001.service"}).output != "active\n";
        },
        3 * kLongTimeout));
    EXPECT_EQ(run({"sh", "-c", "find /home/bert/.local 2>/dev/null"}).output, "");
}

TEST_F(Installed, AServiceThatIsSuspendedWhilePlayingGivesTheKeyboardBackAndPlaysAgain) {
    bePlaying();
    const std::string process = mainProcess();
    ASSERT_EQ(run({"kill", "-STOP", process}).status, 0);

    EXPECT_TRUE(computer().keyboardIsFree());
    EXPECT_TRUE(computer().gameHears(goes)) << computer().gameSaid();
    EXPECT_TRUE(computer().gameHears(comes)) << computer().gameSaid();
    EXPECT_TRUE(computer().plays()) << computer().gameSaid();
    EXPECT_NE(mainProcess(), process);
}

TEST_F(Installed, AnUpgradeWhilePlayingLetsEverythingGoKeepsTheSettingsAndPlaysAgain) {
    bePlaying();
    const std::string settings = Computer::settings();
    const auto before = Computer::processes("jvnd");
    computer().keyboard().press(KEY_W);
    ASSERT_TRUE(computer().gameHears("dpup")) << computer().gameSaid();

    const Ended ended = computer().install(JOYVANE_UPGRADE);

    ASSERT_EQ(ended.status, 0) << ended.output;
    EXPECT_TRUE(computer().gameHears(goes)) << computer().gameSaid();
    EXPECT_TRUE(computer().keyboardIsFree());
    computer().keyboard().release(KEY_W);
    EXPECT_TRUE(computer().gameHears(comes)) << computer().gameSaid();
    EXPECT_TRUE(computer().plays()) << computer().gameSaid();
    EXPECT_EQ(Computer::settings(), settings);
    EXPECT_NE(Computer::processes("jvnd"), before) << "the session's daemon is the new one";
    EXPECT_EQ(run({"sh", "-c", "ls -l /proc/[0-9]*/exe 2>/dev/null | grep 'jvn.*deleted'"}).output, "");
    EXPECT_EQ(run({"systemctl", "--failed", "--no-legend"}).output, "");
}

TEST_F(Installed, RemovedWhilePlayingItLeavesNothingButHerSettings) {
    bePlaying();
    const std::string settings = Computer::settings();

    const Ended removed = computer().remove();

    ASSERT_EQ(removed.status, 0) << removed.output;
    EXPECT_TRUE(computer().gameHears(goes)) << computer().gameSaid();
    EXPECT_TRUE(computer().keyboardIsFree());
    for (const char* name : {"jvnd", "jvninputd"}) EXPECT_TRUE(Computer::processes(name).empty()) << name;
    EXPECT_EQ(
        run({"sh", "-c", "systemctl list-units --all --no-legend 'jvn*'; systemctl list-unit-files --no-legend 'jvn*'"})
            .output,
        "");
    EXPECT_EQ(Computer::asAnna({"systemctl", "--user", "list-units", "--all", "--no-legend", "jvn*"}).output, "");
    EXPECT_EQ(Computer::settings(), settings);
    EXPECT_EQ(run({"sh", "-c", "find /run -name 'jvn*'; find /home/anna/.local/share/joyvane -type s"}).output, "");
}

TEST_F(Installed, PurgedItLeavesTheComputerAsItWas) {
    if (s_filesBefore.empty()) GTEST_SKIP() << "only after the first step";
    if (computer().isInstalled()) ASSERT_EQ(computer().remove().status, 0);

    const Ended ended = computer().purge();

    ASSERT_EQ(ended.status, 0) << ended.output;
    std::vector<std::string> left;
    std::ranges::set_difference(computer().files(), s_filesBefore, std::back_inserter(left));
    EXPECT_EQ(left, std::vector<std::string>{});
}

} // namespace
} // namespace machine
