#include "tests/jvninputd/PlayerTest.h"

using namespace jvninputd;
using namespace jvninputd::fakes;
using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

TEST_F(PlayerTest, WithoutAnythingToPlayKeyboardsAreNotEvenOpened) {
    plugIn(1);
    EXPECT_THAT(devices.calls, IsEmpty());
    EXPECT_EQ(player.readiness(), input::Readiness::ungoverned);
}

TEST_F(PlayerTest, WhileNobodyListensThereIsAPadAndKeysAreNotRead) {
    plugIn(1);
    player.play(something(), Player::GiveBack::WhenFree, now);

    EXPECT_THAT(devices.calls, ElementsAre("make pad 1"));
    EXPECT_EQ(player.readiness(), input::Readiness::waitingForGame);
}

TEST_F(PlayerTest, AGameThatListensGetsTheKeyboard) {
    startGame();
    EXPECT_TRUE(taken());
    EXPECT_EQ(player.readiness(), input::Readiness::playing);

    press(KEY_W);
    EXPECT_EQ(devices.padShows(), "3:17=-1");
    release(KEY_W);
    EXPECT_EQ(devices.padShows(), "");
}

TEST_F(PlayerTest, WhenTheGameGoesTheKeyboardIsGivenBackAndClosed) {
    startGame();
    player.setListening(false, now);

    EXPECT_FALSE(taken());
    EXPECT_FALSE(devices.keyboards[1].open);
    EXPECT_EQ(devices.pad, input::Profile::plain);
}

TEST_F(PlayerTest, KeysThatAreNotMappedReachTheDesktopWithTheirRepeats) {
    startGame();
    devices.calls.clear();
    press(KEY_TAB);
    key(KEY_TAB, 2);
    key(KEY_W, 2); // mapped: repeats are nothing to a pad
    release(KEY_TAB);
    key(KEY_TAB, 2);

    EXPECT_THAT(devices.calls, ElementsAre("desktop 1 1:15=1", "desktop 1 1:15=2", "desktop 1 1:15=0"));
}

TEST_F(PlayerTest, WheelsAndSwitchesReachTheDesktopAndScanCodesDoNot) {
    startGame();
    devices.calls.clear();
    const Event events[] = {
        {EV_MSC, MSC_SCAN, 458778}, {EV_REL, REL_WHEEL, 1}, {EV_ABS, ABS_VOLUME, 3}, {EV_SW, SW_LID, 1}};
    player.frame(1, events, now);

    EXPECT_THAT(devices.calls, ElementsAre("desktop 1 2:8=1 3:32=3 5:0=1"));
}

TEST_F(PlayerTest, APressAndReleaseInOneFrameIsBoth) {
    startGame();
    devices.calls.clear();
    const Event events[] = {{EV_KEY, KEY_W, 1}, {EV_KEY, KEY_W, 0}};
    player.frame(1, events, now);

    EXPECT_THAT(devices.calls, ElementsAre("pad 3:17=-1", "pad 3:17=0"));
}

TEST_F(PlayerTest, AKeyboardIsTakenOnlyWhenNoneOfItsKeysIsDown) {
    plugIn(1);
    plugIn(2);
    player.play(something(), Player::GiveBack::WhenFree, now);
    press(KEY_ENTER);
    player.setListening(true, now);
    EXPECT_FALSE(taken(1));
    EXPECT_TRUE(taken(2)) << "the other keyboard's moment is its own";

    press(KEY_W);
    release(KEY_ENTER);
    EXPECT_FALSE(taken(1));
    EXPECT_EQ(devices.padShows(), "");
    release(KEY_W);
    EXPECT_TRUE(taken(1));
}

TEST_F(PlayerTest, WaitingForKeysIsSaid) {
    plugIn(1);
    player.play(something(), Player::GiveBack::WhenFree, now);
    press(KEY_ENTER);
    player.setListening(true, now);

    EXPECT_EQ(player.readiness(), input::Readiness::waitingForKeys);
}

TEST_F(PlayerTest, GivingBackWaitsForAMomentWithoutKeys) {
    startGame();
    press(KEY_W);
    press(KEY_TAB);
    player.setListening(false, now);
    EXPECT_TRUE(taken());

    release(KEY_TAB);
    EXPECT_TRUE(taken());
    EXPECT_EQ(devices.padShows(), "3:17=-1");
    release(KEY_W);
    EXPECT_FALSE(taken());
    EXPECT_FALSE(player.deadline());
}

TEST_F(PlayerTest, GivingBackWaitsASecondAtMostAndThenLetsGoWhatIsHeldFirst) {
    startGame();
    press(KEY_W);
    press(KEY_TAB);
    player.setListening(false, now);
    pass(999ms);
    EXPECT_TRUE(taken());

    devices.calls.clear();
    pass(1ms);
    EXPECT_THAT(devices.calls, ElementsAre("pad 3:17=0", "desktop 1 1:15=0", "give back 1", "close 1"));
}

TEST_F(PlayerTest, AGameThatComesBackInTimeKeepsTheKeyboard) {
    startGame();
    press(KEY_W);
    player.setListening(false, now);
    pass(500ms);
    player.setListening(true, now);
    pass(10s);

    EXPECT_TRUE(taken());
    EXPECT_EQ(devices.padShows(), "3:17=-1");
}

TEST_F(PlayerTest, WhoGovernsGoesAndEverythingIsLetGoAtOnce) {
    startGame();
    press(KEY_W);
    press(KEY_TAB);
    devices.calls.clear();
    player.play(std::nullopt, Player::GiveBack::AtOnce, now);

    EXPECT_THAT(devices.calls, ElementsAre("pad 3:17=0", "desktop 1 1:15=0", "give back 1", "close 1", "make pad 0"));
    EXPECT_FALSE(player.deadline());
}

TEST_F(PlayerTest, AKeyboardThatIsNoLongerChosenIsGivenBackWhenFreeAndThenThePadGoes) {
    startGame();
    press(KEY_W);
    player.play(std::nullopt, Player::GiveBack::WhenFree, now);
    EXPECT_TRUE(taken());
    EXPECT_EQ(devices.pad, input::Profile::plain);

    release(KEY_W);
    EXPECT_FALSE(taken());
    EXPECT_EQ(devices.pad, input::Profile::none);
}

TEST_F(PlayerTest, AKeyPressedWhileItWaitsToBeGivenBackReachesTheDesktop) {
    startGame();
    press(KEY_W);
    player.play(std::nullopt, Player::GiveBack::WhenFree, now);
    devices.calls.clear();
    press(KEY_S);

    EXPECT_THAT(devices.calls, ElementsAre("desktop 1 1:31=1"));
}

TEST_F(PlayerTest, AKeymapChangedInTheMiddleOfAPressReleasesWhatWasPressed) {
    startGame();
    press(KEY_W);
    press(KEY_Q);
    player.play(something(keymapOf({{26, 5}, {20, 6}})), Player::GiveBack::WhenFree, now); // W is A, Q is B
    EXPECT_EQ(devices.padShows(), "3:17=-1");

    release(KEY_W);
    EXPECT_EQ(devices.padShows(), "");
    release(KEY_Q);
    EXPECT_THAT(devices.keyboards[1].standIn, IsEmpty());
    press(KEY_W);
    press(KEY_Q);
    EXPECT_EQ(devices.padShows(), "1:304=1 1:305=1");
}

TEST_F(PlayerTest, AnotherProfileIsAnotherPadAndHeldKeysDoNotShowOnIt) {
    startGame();
    press(KEY_W);
    player.play(something(keymapOf({{26, 3}, {4, 11}})), Player::GiveBack::WhenFree, now);
    EXPECT_EQ(devices.pad, input::Profile::extended);
    EXPECT_EQ(devices.padShows(), "");
    EXPECT_FALSE(player.listening());

    player.setListening(true, now);
    release(KEY_W);
    EXPECT_EQ(devices.padShows(), "");
    press(KEY_A);
    EXPECT_EQ(devices.padShows(), "3:0=32767");
}

TEST_F(PlayerTest, UnpluggedInTheMiddleOfAPressThePadLetsGo) {
    startGame();
    plugIn(2);
    press(KEY_W, 1);
    press(KEY_D, 2);
    unplug(1);

    EXPECT_EQ(devices.padShows(), "3:16=1");
    unplug(2);
    EXPECT_EQ(devices.padShows(), "");
    EXPECT_EQ(player.readiness(), input::Readiness::noKeyboard);
}

TEST_F(PlayerTest, AKeyboardPluggedInDuringAGamePlaysToo) {
    startGame();
    plugIn(2);
    EXPECT_TRUE(taken(2));

    press(KEY_W, 1);
    press(KEY_W, 2);
    release(KEY_W, 1);
    EXPECT_EQ(devices.padShows(), "3:17=-1") << "the other keyboard's W is still down";
    release(KEY_W, 2);
    EXPECT_EQ(devices.padShows(), "");
}

TEST_F(PlayerTest, AKeyboardThatAnotherProgramHadIsTakenAfterItsNextKey) {
    plugIn(1);
    devices.keyboards[1].otherHasIt = true;
    player.play(something(), Player::GiveBack::WhenFree, now);
    player.setListening(true, now);
    EXPECT_FALSE(taken());
    EXPECT_FALSE(player.deadline()) << "no timer runs for it";

    devices.keyboards[1].otherHasIt = false;
    press(KEY_W);
    release(KEY_W);
    EXPECT_TRUE(taken());
}

TEST_F(PlayerTest, WithoutAPadNothingIsTaken) {
    devices.padCanBeMade = false;
    startGame();
    EXPECT_FALSE(taken());
    EXPECT_EQ(player.readiness(), input::Readiness::noPad);

    devices.padCanBeMade = true;
    player.play(something(), Player::GiveBack::WhenFree, now);
    player.setListening(true, now);
    EXPECT_TRUE(taken());
}

TEST_F(PlayerTest, KeysBeyondTheKernelsNumbersAreIgnored) {
    startGame();
    devices.calls.clear();
    key(KEY_MAX, 1);
    const Event beyond{EV_KEY, 0xffff, 1};
    player.frame(1, {&beyond, 1}, now);
    key(KEY_MAX, 0);

    EXPECT_THAT(devices.calls, ElementsAre("desktop 1 1:767=1", "desktop 1 1:767=0"));
}

TEST(PlayFromSettings, ThePadIsExtendedWhereAnInputNeedsItOrTheUserWantsIt) {
    auto settings = input::makeMessage<input::Settings>();
    settings.keyboardPlays = 1;
    settings.bindingCount = 1;
    settings.bindings[0] = {26, native::dpadUp};
    EXPECT_EQ(Play::from(settings).profile, input::Profile::plain);

    settings.forceExtended = 1;
    EXPECT_EQ(Play::from(settings).profile, input::Profile::extended);

    settings.forceExtended = 0;
    settings.bindings[0] = {26, native::leftStickUp};
    EXPECT_EQ(Play::from(settings).profile, input::Profile::extended);
    EXPECT_EQ(Play::from(settings).keymap.inputOf(KEY_W), native::leftStickUp);
}

TEST(PlayFromSettings, TheModeIsTheUsers) {
    auto settings = input::makeMessage<input::Settings>();
    for (const auto mode : {input::PlayMode::whileListened, input::PlayMode::byHand}) {
        settings.mode = mode;
        EXPECT_EQ(Play::from(settings).mode, mode);
    }
}

} // namespace
