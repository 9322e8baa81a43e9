#include "tests/machine/jvninputd/PlayingTest.h"
#include "tests/machine/support/LoginSession.h"
#include "tests/machine/support/Program.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <random>
#include <unistd.h>

namespace machine {
namespace {

// A hundred thousand random presses on two keyboards, while games, clients, keymaps, the keyboards themselves and the
// service come and go, and the session of the user who plays is locked and unlocked. At every halt all fingers are
// lifted, and then nothing may be down and, without a game, nothing taken; and with a game and no more disturbance the
// pad shows what a model says.
class Soak : public ::testing::Test {
protected:
    static constexpr unsigned long wanted = 100'000;
    static constexpr std::array<std::uint16_t, 12> keys{KEY_W, KEY_A, KEY_S,   KEY_D,        KEY_K,         KEY_L,
                                                        KEY_Q, KEY_Z, KEY_TAB, KEY_LEFTCTRL, KEY_RIGHTCTRL, KEY_ESC};

    void SetUp() override {
        for (const unsigned which : {0U, 1U}) plugIn(which);
    }
    void TearDown() override { unlock(); }

    unsigned below(unsigned end) { return static_cast<unsigned>(m_random() % end); }

    void touch() {
        const unsigned which = below(2);
        const std::uint16_t key = keys[below(keys.size())];
        bool& isDown = down[which][key];
        keyboards[which]->send(EV_KEY, key, isDown ? 0 : 1);
        isDown = !isDown;
        presses += isDown;
    }
    // Few keys in long bursts, of which the kernel drops some, and many events among few keys.
    unsigned burst() { return below(2) ? below(60) : below(16'000); }
    void lift() {
        for (const unsigned which : {0U, 1U})
            for (auto& [key, isDown] : down[which]) {
                if (isDown) keyboards[which]->release(key);
                isDown = false;
            }
    }
    void plugIn(unsigned which) {
        keyboards[which].emplace(DeviceDescription{.name = which ? "Second Keyboard" : "First Keyboard"});
    }
    // Whatever is held on it is held no more.
    void unplug(unsigned which) {
        keyboards[which].reset();
        down[which].clear();
        ++unplugged;
    }
    void lock() {
        anna.lock();
        isLocked = true;
        ++locked;
        if (governor) ASSERT_TRUE(governor->waitFor(input::Readiness::locked)) << service.log();
        expectNothingTakenOrDown();
    }
    void unlock() {
        if (isLocked) anna.unlock();
        isLocked = false;
    }
    void govern() {
        // The socket says who it is by whom the process is when it connects.
        struct AsAnna {
            AsAnna() { EXPECT_EQ(::seteuid(kAnna), 0); }
            ~AsAnna() { EXPECT_EQ(::seteuid(kRoot), 0); }
        };
        {
            const AsAnna asAnna;
            governor.emplace(service.socket(), input::Role::govern);
        }
        changeKeymap();
    }
    void changeKeymap() {
        Bindings bindings;
        for (const int usage : {26, 4, 22, 7, 14, 15, 224, 41})
            if (below(4)) bindings.emplace_back(usage, 1 + static_cast<int>(below(below(4) ? 10 : 21)));
        if (bindings.empty()) bindings = defaultBindings();
        governor->play(bindings);
    }
    void openGame() {
        if (const auto nodes = eventNodes(padName); !nodes.empty()) {
            try {
                game.emplace(nodes.front());
            } catch (const std::system_error&) { // NOLINT(bugprone-empty-catch): it has just gone
            }
        }
    }
    void disturb() {
        if (below(2)) unlock();
        switch (below(12)) {
        case 0:
            govern();
            break;
        case 1:
            governor.reset();
            break;
        case 2:
        case 3:
            if (governor) changeKeymap();
            break;
        case 4:
            game.reset();
            break;
        case 5:
            openGame();
            break;
        case 6:
            service.signal(SIGSTOP);
            for (int i = 0; i < 30; ++i) touch();
            service.signal(SIGCONT);
            break;
        case 7:
        case 8:
            lock();
            break;
        case 9:
        case 10: {
            const unsigned which = below(2);
            unplug(which);
            plugIn(which);
            break;
        }
        default:
            service.kill();
            service.start();
            governor.reset();
        }
    }
    // By us; fingers may be on the keyboards.
    void expectNothingTakenOrDown() {
        for (const auto& keyboard : keyboards) {
            EventReader everybody(keyboard->node());
            ASSERT_TRUE(waitUntil([&] { return !everybody.grabbedByOthers(); }));
        }
        for (const std::string& node : eventNodes(standInName)) {
            try {
                ASSERT_EQ(EventReader(node).keysDown(), 0);
            } catch (const std::system_error&) { // NOLINT(bugprone-empty-catch): it has just gone
            }
        }
    }
    void halt() {
        lift();
        unlock();
        if (!governor) govern();
        governor->play(defaultBindings());
        // With a game it plays (or is paused: the next game ends that), without one everybody has the keyboards.
        game.reset();
        // udev looks at a new pad, on a busy computer for so long that it counts as a game; then at what became of it.
        settle(service.socket());
        ASSERT_TRUE(governor->waitFor([](const auto& state) { return state.profile != input::Profile::none; }))
            << "readiness " << static_cast<int>(governor->state().readiness) << service.log();
        ASSERT_EQ(run({"udevadm", "settle"}, kRoot, 6 * kLongTimeout).status, 0);
        settle(service.socket());
        ASSERT_TRUE(governor->waitFor(input::Readiness::waitingForGame))
            << "readiness " << static_cast<int>(governor->state().readiness) << ", keyboards "
            << static_cast<int>(governor->state().keyboards) << ", taken "
            << static_cast<int>(governor->state().keyboardsTaken) << service.log();
        for (const auto& keyboard : keyboards) ASSERT_EQ(EventReader(keyboard->node()).keysDown(), 0);
        expectNothingTakenOrDown();
        const std::string node = waitForEventNode(padName);
        ASSERT_FALSE(node.empty());
        game.emplace(node);
        ASSERT_TRUE(governor->waitFor([](const auto& state) { return state.keyboardsTaken == 2; })) << service.log();
        ASSERT_EQ(game->keysDown(), 0);
        for (const int axis : {ABS_X, ABS_Y, ABS_HAT0X, ABS_HAT0Y})
            ASSERT_EQ(game->axis(static_cast<std::uint16_t>(axis)), 0);
        ++halts;
    }
    bool held(std::uint16_t key) const {
        return std::ranges::any_of(down, [key](const auto& fingers) {
            const auto found = fingers.find(key);
            return found != fingers.end() && found->second;
        });
    }
    // -1, 0 or 1; of both the one that was pressed last.
    int direction(std::uint16_t low, std::uint16_t high) const {
        if (held(low) && held(high)) return pressedLast.at(low) > pressedLast.at(high) ? -1 : 1;
        return held(high) - held(low);
    }
    bool padShowsWhatIsHeld() const {
        return game->isDown(BTN_A) == held(KEY_K) && game->isDown(BTN_B) == held(KEY_L) &&
               game->axis(ABS_HAT0X) == direction(KEY_A, KEY_D) && game->axis(ABS_HAT0Y) == direction(KEY_W, KEY_S);
    }
    // From a halt on: slowly enough that nothing is dropped.
    void playByTheModel() {
        constexpr std::array<std::uint16_t, 6> played{KEY_W, KEY_A, KEY_S, KEY_D, KEY_K, KEY_L};
        pressedLast.clear();
        for (unsigned step = 1; step <= 40; ++step) {
            const unsigned which = below(2);
            const std::uint16_t key = played[below(played.size())];
            bool& isDown = down[which][key];
            isDown = !isDown;
            if (isDown) pressedLast[key] = step;
            presses += isDown;
            keyboards[which]->send(EV_KEY, key, isDown);
            settle(service.socket());
            ASSERT_TRUE(padShowsWhatIsHeld()) << "step " << step;
        }
        // In the middle of presses one of the keyboards goes, and another one comes.
        const unsigned which = below(2);
        unplug(which);
        ASSERT_TRUE(waitUntil([&] { return padShowsWhatIsHeld(); }));
        plugIn(which);
        ASSERT_TRUE(governor->waitFor([](const auto& state) { return state.keyboardsTaken == 2; })) << service.log();
        ASSERT_TRUE(padShowsWhatIsHeld());
    }

    LoginSession& anna = LoginSession::ofAnna();
    InputService service;
    std::optional<VirtualKeyboard> keyboards[2];
    std::optional<InputClient> governor;
    std::optional<EventReader> game;
    std::map<std::uint16_t, bool> down[2];
    std::map<std::uint16_t, unsigned> pressedLast; // when
    unsigned long presses = 0;
    int halts = 0;
    bool isLocked = false;
    int locked = 0;
    int unplugged = 0;
    std::mt19937 m_random{1};
};

TEST_F(Soak, RandomPressesAmongRandomEventsLeaveNothingDownAndNothingTaken) {
    govern();
    const long descriptors = service.descriptors();
    halt();
    while (presses < wanted && !HasFatalFailure()) {
        for (int round = 0; round < 6; ++round) {
            for (unsigned i = burst(); i > 0; --i) touch();
            disturb();
        }
        halt();
        if (!HasFatalFailure()) playByTheModel();
    }
    std::printf("%lu presses, %d halts, %d times unplugged, %d times locked\n", presses, halts, unplugged, locked);
    EXPECT_GT(unplugged, 0);
    EXPECT_GT(locked, 0);
    EXPECT_LE(service.descriptors(), descriptors + 12) << "as many as devices and clients need";
}

} // namespace
} // namespace machine
