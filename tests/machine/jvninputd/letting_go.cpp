#include "tests/machine/jvninputd/PlayingTest.h"

#include <csignal>

namespace machine {
namespace {

using namespace std::chrono_literals;

// What must never happen: a key that stays down, a keyboard that stays taken.
class LettingGo : public PlayingTest {
protected:
    // Everybody gets the keyboard's events, and nothing of ours is left or holds anything.
    void expectTheKeyboardIsFree() {
        EventReader everybody(keyboard.node());
        EXPECT_TRUE(waitUntil([&] { return !everybody.grabbedByOthers(); })) << service.log();
        keyboard.tap(KEY_F10);
        EXPECT_TRUE(everybody.waitFor(EV_KEY, KEY_F10, 0));
    }
    void holdOneOfEach() {
        keyboard.press(KEY_W);
        keyboard.press(KEY_TAB);
        ASSERT_EQ(game->nextText(), "EV_ABS 17 -1");
        ASSERT_EQ(desktop->nextText(), "EV_KEY 15 1");
    }
    void expectBothReleased() {
        EXPECT_EQ(game->nextText(), "EV_ABS 17 0");
        EXPECT_TRUE(desktop->waitFor(EV_KEY, KEY_TAB, 0)); // behind repeats
    }
    void chord() {
        keyboard.press(KEY_LEFTCTRL);
        keyboard.press(KEY_RIGHTCTRL);
        keyboard.press(KEY_ESC);
    }
    void releaseChord() {
        for (const int key : {KEY_ESC, KEY_RIGHTCTRL, KEY_LEFTCTRL}) keyboard.release(static_cast<std::uint16_t>(key));
    }
    // Who has the devices open sees them go, and holds nothing of theirs any more.
    void expectNothingOfOursIsLeft() {
        EXPECT_TRUE(waitForNoEventNode(padName));
        EXPECT_TRUE(waitForNoEventNode(standInName));
        EXPECT_TRUE(desktop->gone());
        EXPECT_TRUE(game->gone());
    }
};

TEST_F(LettingGo, TheServiceIsKilled) {
    startGame();
    holdOneOfEach();
    service.kill();

    expectNothingOfOursIsLeft();
    expectTheKeyboardIsFree();
}

TEST_F(LettingGo, AfterACrashItPlaysAgain) {
    startGame();
    holdOneOfEach();
    service.kill();
    expectNothingOfOursIsLeft();
    service.start();
    InputClient again(service.socket(), input::Role::govern);
    again.play(defaultBindings());
    game.emplace(EventReader::ofDevice(padName));
    EXPECT_TRUE(again.waitFor(input::Readiness::waitingForKeys)) << "W and Tab are still down";
    keyboard.release(KEY_W);
    keyboard.release(KEY_TAB);
    EXPECT_TRUE(again.waitFor(input::Readiness::playing));
}

TEST_F(LettingGo, WhoGovernsIsKilled) {
    startGame();
    InputClient observer(service.socket(), input::Role::observe);
    holdOneOfEach();
    governor.close();

    expectNothingOfOursIsLeft();
    expectTheKeyboardIsFree();
    EXPECT_TRUE(observer.waitFor(input::Readiness::ungoverned));
}

TEST_F(LettingGo, TheKeyboardIsUnpluggedInTheMiddleOfAPress) {
    VirtualKeyboard second({.name = "Second Keyboard"});
    startGame();
    ASSERT_TRUE(governor.waitFor([](const auto& state) { return state.keyboardsTaken == 2; }));
    keyboard.press(KEY_W);
    ASSERT_EQ(game->nextText(), "EV_ABS 17 -1");
    keyboard.unplug();

    EXPECT_EQ(game->nextText(), "EV_ABS 17 0");
    EXPECT_TRUE(governor.waitFor([](const auto& state) { return state.keyboards == 1; }));
    second.tap(KEY_D);
    EXPECT_EQ(game->nextText(), "EV_ABS 16 1");
}

TEST_F(LettingGo, TheLastKeyboardIsUnplugged) {
    startGame();
    keyboard.unplug();
    EXPECT_TRUE(governor.waitFor(input::Readiness::noKeyboard));

    VirtualKeyboard another({.name = "Another Keyboard"});
    EXPECT_TRUE(governor.waitFor(input::Readiness::playing));
    another.tap(KEY_W);
    EXPECT_EQ(game->nextText(), "EV_ABS 17 -1");
}

TEST_F(LettingGo, TwoKeyboardsHoldTheSameInput) {
    VirtualKeyboard second({.name = "Second Keyboard"});
    startGame();
    ASSERT_TRUE(governor.waitFor([](const auto& state) { return state.keyboardsTaken == 2; }));
    keyboard.press(KEY_W);
    EXPECT_EQ(game->nextText(), "EV_ABS 17 -1");
    second.press(KEY_W);
    settle(service.socket()); // two keyboards have no order between them
    keyboard.release(KEY_W);
    settle(service.socket());
    second.press(KEY_K);
    EXPECT_EQ(game->nextText(), "EV_KEY 304 1") << "W is still down";
    second.release(KEY_W);
    EXPECT_EQ(game->nextText(), "EV_ABS 17 0");
}

TEST_F(LettingGo, TheServiceIsStoppedForAWhile) {
    startGame();
    holdOneOfEach();
    service.signal(SIGSTOP);
    keyboard.release(KEY_W);
    keyboard.release(KEY_TAB);
    for (int i = 0; i < 200; ++i) keyboard.tap(KEY_Q); // more than is kept for it: the kernel drops
    service.signal(SIGCONT);

    expectBothReleased();
    EXPECT_TRUE(waitUntil([this] { return desktop->keysDown() == 0 && game->keysDown() == 0; }));
    keyboard.tap(KEY_K);
    EXPECT_TRUE(game->waitFor(EV_KEY, BTN_A, 1));
}

// Nobody has told the service manager: the kernel itself ends it, four seconds after it was heard of last. One that has
// held a keyboard before, and holds none now, is as dead and nobody's trouble.
TEST_F(LettingGo, StoppedForGoodItIsEndedAndOneThatHoldsNothingGoesOnAfterwards) {
    const InputService other;
    InputClient another(other.socket(), input::Role::govern);
    another.play(defaultBindings());
    game.emplace(EventReader::ofDevice(padName));
    ASSERT_TRUE(another.waitFor(input::Readiness::playing));
    another.playNothing();
    ASSERT_TRUE(waitForNoEventNode(padName));
    ASSERT_TRUE(waitForNoEventNode(standInName));
    startGame();
    holdOneOfEach();
    const auto begin = std::chrono::steady_clock::now();
    other.signal(SIGSTOP);
    service.signal(SIGSTOP);

    service.waitForEnd();
    expectNothingOfOursIsLeft();
    expectTheKeyboardIsFree();
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 5s);

    other.signal(SIGCONT);
    keyboard.release(KEY_W);
    keyboard.release(KEY_TAB);
    another.play(defaultBindings());
    game.emplace(EventReader::ofDevice(padName));
    EXPECT_TRUE(another.waitFor(input::Readiness::playing));
}

TEST_F(LettingGo, TheChordLetsGoAtOnceAndItsEscapeGoesNowhere) {
    startGame();
    holdOneOfEach();
    chord();

    expectBothReleased();
    EXPECT_TRUE(governor.waitFor(input::Readiness::paused));
    expectTheKeyboardIsFree();
    while (const auto event = desktop->next(0ms)) EXPECT_NE(event->code, KEY_ESC);
    EXPECT_EQ(desktop->keysDown(), 0);
    EXPECT_EQ(game->nextText(0ms), "nothing");
}

TEST_F(LettingGo, TheChordBringsItBack) {
    startGame();
    chord();
    releaseChord();
    ASSERT_TRUE(governor.waitFor(input::Readiness::paused));
    chord();
    EXPECT_TRUE(governor.waitFor(input::Readiness::waitingForKeys));
    releaseChord();
    EXPECT_TRUE(governor.waitFor(input::Readiness::playing));
}

TEST_F(LettingGo, AGameThatEndsWhileKeysAreHeldGetsASecond) {
    startGame();
    holdOneOfEach();
    const auto begin = std::chrono::steady_clock::now();
    game.reset();

    EXPECT_TRUE(desktop->waitFor(EV_KEY, KEY_TAB, 0));
    const auto took = std::chrono::steady_clock::now() - begin;
    EXPECT_GE(took, 900ms);
    EXPECT_LT(took, 2s);
    expectTheKeyboardIsFree();
    keyboard.release(KEY_W);
    keyboard.release(KEY_TAB);
    EXPECT_TRUE(governor.waitFor(input::Readiness::waitingForGame));
}

TEST_F(LettingGo, AKeyHeldBeforeTheGameComesUpForTheDesktop) {
    governor.play(defaultBindings());
    EventReader everybody(keyboard.node());
    keyboard.press(KEY_ENTER);
    game.emplace(EventReader::ofDevice(padName));
    ASSERT_TRUE(governor.waitFor(input::Readiness::waitingForKeys));
    keyboard.release(KEY_ENTER);

    EXPECT_TRUE(everybody.waitFor(EV_KEY, KEY_ENTER, 0));
    EXPECT_TRUE(governor.waitFor(input::Readiness::playing));
}

TEST_F(LettingGo, SwitchedOnByHandItPlaysWithoutAGame) {
    governor.play(defaultBindings(), input::PlayMode::byHand);
    ASSERT_TRUE(governor.waitFor(input::Readiness::switchedOff));
    chord();
    releaseChord();
    EXPECT_TRUE(governor.waitFor(input::Readiness::playing));
    chord();
    EXPECT_TRUE(governor.waitFor(input::Readiness::switchedOff));
    expectTheKeyboardIsFree();
}

} // namespace
} // namespace machine
