#include "tests/machine/jvninputd/PlayingTest.h"

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <sys/inotify.h>
#include <thread>
#include <unistd.h>

namespace machine {
namespace {

using namespace std::chrono_literals;

class Listening : public PlayingTest {
protected:
    bool nobodyListensFor(std::chrono::milliseconds time) {
        return !governor.waitFor([](const auto& state) { return state.gameListens != 0; }, time);
    }
    // Until udev, the login manager and others have looked at the new devices.
    bool rests() {
        settle(service.socket());
        return waitUntil([this] {
            const long before = service.wakeUps();
            std::this_thread::sleep_for(500ms);
            return service.wakeUps() == before;
        });
    }
    bool nobodyStopsListeningFor(std::chrono::milliseconds time) {
        return !governor.waitFor([](const auto& state) { return state.gameListens == 0; }, time);
    }
};

TEST_F(Listening, AGameThatOpensThePadAndStays) {
    governor.play(defaultBindings());
    const std::string node = waitForEventNode(padName);
    ASSERT_TRUE(governor.waitFor(input::Readiness::waitingForGame));
    game.emplace(node);
    EXPECT_TRUE(governor.waitFor(input::Readiness::playing));
    game.reset();
    EXPECT_TRUE(governor.waitFor(input::Readiness::waitingForGame));
}

TEST_F(Listening, AUserWhoLooksAtThePadIsAListenerWithoutAGame) {
    governor.play(defaultBindings());
    ASSERT_TRUE(governor.waitFor(input::Readiness::waitingForGame));
    {
        InputClient looking(service.socket(), input::Role::listen);
        ASSERT_TRUE(looking.waitFor(input::Readiness::playing));

        keyboard.press(KEY_W);
        EXPECT_TRUE(looking.waitFor([](const auto& state) { return state.inputs == 1u << 3; }));
        keyboard.release(KEY_W);
        EXPECT_TRUE(looking.waitFor([](const auto& state) { return state.inputs == 0; }));
        EXPECT_EQ(governor.state().inputs, 0u);

        // A game beside it, and gone again, changes nothing for it.
        game.emplace(EventReader::ofDevice(padName));
        game.reset();
        EXPECT_TRUE(nobodyStopsListeningFor(500ms));

        // Another pad, too, is looked at.
        governor.play(defaultBindings(), input::PlayMode::whileListened, true);
        EXPECT_TRUE(looking.waitFor([](const auto& state) {
            return state.profile == input::Profile::extended && state.readiness == input::Readiness::playing;
        }));
    }
    EXPECT_TRUE(governor.waitFor(input::Readiness::waitingForGame)) << "the keyboard is given back";
}

TEST_F(Listening, ANewPadHasNoGameYet) {
    startGame();
    governor.play(defaultBindings(), input::PlayMode::whileListened, true);
    ASSERT_TRUE(governor.waitFor([](const auto& state) { return state.profile == input::Profile::extended; }));

    settle(service.socket()); // clients come and go

    settle(service.socket());
    EXPECT_TRUE(governor.waitFor(input::Readiness::waitingForGame));
    EXPECT_FALSE(EventReader(keyboard.node()).grabbedByOthers());
}

TEST_F(Listening, WhoLooksAtAKeyboardThatIsSwitchedByHandSwitchesNothing) {
    InputClient looking(service.socket(), input::Role::listen);
    governor.play(defaultBindings(), input::PlayMode::byHand);

    EXPECT_TRUE(looking.waitFor(input::Readiness::switchedOff));
}

TEST_F(Listening, ScansOfTenMillisecondsDoNotCount) {
    governor.play(defaultBindings());
    const std::string node = waitForEventNode(padName);
    ASSERT_TRUE(governor.waitFor(input::Readiness::waitingForGame));
    const int before = governor.gamesHeard();
    constexpr int scans = 30;
    for (int scan = 0; scan < scans; ++scan) {
        {
            const EventReader reader(node);
            std::this_thread::sleep_for(10ms);
        }
        std::this_thread::sleep_for(10ms);
    }
    EXPECT_TRUE(nobodyListensFor(500ms));
    // Nor did they for a moment; but what a busy computer makes of ten milliseconds may be a game.
    EXPECT_LT(governor.gamesHeard() - before, scans / 4);
}

TEST_F(Listening, ScansDoNotEndAGame) {
    startGame();
    const std::string node = waitForEventNode(padName);
    for (int scan = 0; scan < 10; ++scan) {
        const EventReader reader(node);
        std::this_thread::sleep_for(5ms);
    }
    settle(service.socket());
    keyboard.tap(KEY_W);
    EXPECT_EQ(game->nextText(), "EV_ABS 17 -1");
    EXPECT_EQ(governor.state().readiness, input::Readiness::playing);
}

// The node is opened in the moment in which it appears, by somebody who was waiting for it. udev, which looks at new
// nodes as well, stands still meanwhile.
TEST_F(Listening, TheFirstReaderIsNotMissedHoweverEarlyItComes) {
    settle(service.socket());
    ASSERT_EQ(std::system("udevadm control --stop-exec-queue"), 0);
    for (int round = 0; round < 4; ++round) {
        const int watch = ::inotify_init1(IN_CLOEXEC);
        ::inotify_add_watch(watch, "/dev/input", IN_CREATE);
        governor.play(defaultBindings());
        alignas(::inotify_event) char buffer[1024];
        EXPECT_GT(::read(watch, buffer, sizeof buffer), 0);
        const std::string node = std::string("/dev/input/") + reinterpret_cast<::inotify_event*>(buffer)->name;
        const int early = ::open(node.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
        EXPECT_GE(early, 0) << node;

        EXPECT_TRUE(governor.waitFor(input::Readiness::playing)) << "round " << round << ", " << node << service.log();
        ::close(early);
        EXPECT_TRUE(governor.waitFor(input::Readiness::waitingForGame));
        ::close(watch);
        governor.playNothing();
        EXPECT_TRUE(governor.waitFor(input::Readiness::ungoverned));
    }
    EXPECT_EQ(std::system("udevadm control --start-exec-queue"), 0);
}

TEST_F(Listening, TwoReadersThatGoTogetherAreBothGone) {
    startGame();
    const std::string node = waitForEventNode(padName);
    service.signal(SIGSTOP); // so that it sees all of it at once
    {
        const EventReader second(node);
        const EventReader third(node);
    }
    game.reset();
    service.signal(SIGCONT);
    EXPECT_TRUE(governor.waitFor(input::Readiness::waitingForGame));
}

TEST_F(Listening, NothingIsReadOfAKeyboardWhileNobodyListens) {
    governor.play(defaultBindings());
    ASSERT_TRUE(governor.waitFor(input::Readiness::waitingForGame));
    ASSERT_FALSE(waitForEventNode(standInName).empty());
    ASSERT_TRUE(rests());
    const long before = service.wakeUps();
    for (int i = 0; i < 100; ++i) keyboard.tap(KEY_A);
    std::this_thread::sleep_for(1s);
    EXPECT_LE(service.wakeUps() - before, 2) << "keys typed wake nobody";
}

TEST_F(Listening, IdleIsIdleAndSmall) {
    governor.play(defaultBindings());
    ASSERT_TRUE(governor.waitFor(input::Readiness::waitingForGame));
    ASSERT_FALSE(waitForEventNode(padName).empty());
    ASSERT_FALSE(waitForEventNode(standInName).empty());
    ASSERT_TRUE(rests());
    const long before = service.wakeUps();
    std::this_thread::sleep_for(2s);
    EXPECT_EQ(service.wakeUps() - before, 0);
    EXPECT_LE(service.privateMemory(), 2048);
    RecordProperty("private_kib", static_cast<int>(service.privateMemory()));
    std::printf("private memory: %ld KiB\n", service.privateMemory());
}

} // namespace
} // namespace machine
