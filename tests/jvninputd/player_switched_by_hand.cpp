// The chord that pauses and resumes, and playing that is switched on by hand.

#include "tests/jvninputd/PlayerTest.h"

#include "services/common/log.h"

using namespace jvninputd;
using namespace jvninputd::fakes;
using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

TEST_F(PlayerTest, TheChordPausesAndResumes) {
    startGame();
    press(KEY_W);
    devices.calls.clear();
    chord();
    EXPECT_THAT(devices.calls, ElementsAre("desktop 1 1:29=1", "desktop 1 1:97=1", "pad 3:17=0",
                                           "desktop 1 1:29=0 1:97=0", "give back 1"))
        << "its Escape goes nowhere";
    EXPECT_EQ(player.readiness(), input::Readiness::paused);

    release(KEY_W);
    releaseChord();
    EXPECT_FALSE(taken());
    chord();
    EXPECT_FALSE(taken()) << "the chord's own keys are still down";
    releaseChord();
    EXPECT_TRUE(taken());
}

TEST_F(PlayerTest, OfKeysAndChordsNoWordIsLogged) {
    std::vector<std::string> lines;
    services::setLogSink([&lines](std::string_view line) { lines.emplace_back(line); });
    startGame();
    for (const auto key :
         std::initializer_list<std::uint16_t>{KEY_W, KEY_TAB, KEY_P}) { // mapped, and as a password is typed
        press(key);
        release(key);
    }
    chord();
    releaseChord();
    press(KEY_TAB);
    release(KEY_TAB);

    services::setLogSink({});
    EXPECT_THAT(lines, IsEmpty());
}

TEST_F(PlayerTest, TheChordWorksWhateverIsMapped) {
    startGame(keymapOf({{224, 5}, {228, 6}, {41, 21}}));
    chord();
    EXPECT_FALSE(taken());
    EXPECT_EQ(devices.padShows(), "");
}

TEST_F(PlayerTest, TheChordForKeyboardsWithoutARightCtrl) {
    startGame();
    press(KEY_LEFTCTRL);
    press(KEY_LEFTALT);
    press(KEY_ESC);

    EXPECT_FALSE(taken());
}

TEST_F(PlayerTest, OneModifierIsNoChord) {
    startGame();
    for (const unsigned modifier : {KEY_LEFTCTRL, KEY_RIGHTCTRL, KEY_LEFTALT}) {
        press(modifier);
        press(KEY_ESC);
        EXPECT_TRUE(taken());
        EXPECT_EQ(devices.padShows(), "1:315=1");
        release(KEY_ESC);
        release(modifier);
    }
}

TEST_F(PlayerTest, TheChordsKeysMayBeOnTwoKeyboards) {
    startGame();
    plugIn(2);
    press(KEY_LEFTCTRL, 1);
    press(KEY_RIGHTCTRL, 2);
    press(KEY_ESC, 1);

    EXPECT_FALSE(taken(1));
    EXPECT_FALSE(taken(2));
}

TEST_F(PlayerTest, APauseEndsWhenTheLastReaderClosesThePad) {
    startGame();
    chord();
    releaseChord();
    player.setListening(false, now);
    player.setListening(true, now);

    EXPECT_TRUE(taken());
}

TEST_F(PlayerTest, ByHandTheChordSwitchesOnAndOff) {
    playByHand();
    EXPECT_EQ(player.readiness(), input::Readiness::switchedOff);
    EXPECT_TRUE(devices.keyboards[1].open);
    chord();
    releaseChord();
    EXPECT_TRUE(taken());
    chord();
    EXPECT_FALSE(taken());
}

TEST_F(PlayerTest, ByHandAGameThatComesOrGoesChangesNothing) {
    playByHand();
    player.setListening(true, now);
    EXPECT_FALSE(taken());
    chord();
    releaseChord();
    player.setListening(false, now);
    EXPECT_TRUE(taken());
}

TEST_F(PlayerTest, TheSwitchOutlastsALock) {
    playByHand();
    chord();
    releaseChord();
    player.play(std::nullopt, Player::GiveBack::AtOnce, now);
    EXPECT_FALSE(taken());
    player.play(something(keymapOf(defaultBindings), input::PlayMode::byHand), Player::GiveBack::WhenFree, now);

    EXPECT_TRUE(taken());
}

TEST_F(PlayerTest, TheSwitchIsOffAfterTheOtherMode) {
    playByHand();
    chord();
    releaseChord();
    player.play(something(), Player::GiveBack::WhenFree, now);
    player.play(something(keymapOf(defaultBindings), input::PlayMode::byHand), Player::GiveBack::WhenFree, now);

    EXPECT_EQ(player.readiness(), input::Readiness::switchedOff);
}

} // namespace
