#include "tests/jvninputd/PlayerWorld.h"

#include <array>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <list>
#include <map>
#include <random>
#include <set>
#include <utility>

using namespace jvninputd;
using namespace jvninputd::fakes;
using namespace std::chrono_literals;
using ::testing::IsEmpty;

namespace {

using PadState = std::map<std::pair<unsigned, unsigned>, int>;

// What should be on the pad, worked out another way than the Player does: from the list of all presses that are held,
// each with the input that the keymap gave it, and from what each axis was moved to last.
struct HeldPresses {
    struct Press {
        KeyboardId keyboard;
        unsigned key;
        native::Code input;
    };
    std::list<Press> held;
    PadState lastMoves;

    static PadState shows(native::Code input) {
        std::vector<Event> events;
        appendPadEvents(0, bitOf(input), events);
        PadState state;
        for (const Event event : events) state[{event.type, event.code}] = event.value;
        return state;
    }

    void press(const Press& press) {
        held.push_back(press);
        for (const auto& [place, value] : shows(press.input)) lastMoves[place] = value;
    }

    PadState pad(InputSet profile) const {
        std::map<std::pair<unsigned, unsigned>, std::set<int>> wanted;
        for (const Press& press : held)
            if (profile & bitOf(press.input))
                for (const auto& [place, value] : shows(press.input)) wanted[place].insert(value);
        PadState state;
        for (const auto& [place, values] : wanted)
            state[place] = values.size() == 1 ? *values.begin() : lastMoves.at(place);
        return state;
    }
};

// Fingers, games, clients and plugs at random, and what must hold after each of their moves.
class Chaos : protected PlayerWorld {
public:
    explicit Chaos(unsigned seed) : m_random(seed) {}

    void step() {
        const unsigned move = below(1000);
        if (move < 820)
            touch();
        else if (move < 850)
            pass(std::chrono::milliseconds(below(400)));
        else if (move < 880)
            player.setListening(below(5) > 0 && devices.pad != input::Profile::none, now);
        else if (move < 905)
            changeKeymap();
        else if (move < 915)
            plugOrUnplug();
        else if (move < 920)
            stopPlaying();
        else if (move < 950)
            liftAll();
        else if (move < 960)
            chord();
        else
            repeatSomething();
        check();
    }

    void end() {
        liftAll();
        stopPlaying();
        pass(2s);
        check();
        EXPECT_THAT(devices.padState, IsEmpty());
        for (const auto& [id, keyboard] : devices.keyboards) EXPECT_FALSE(keyboard.taken || keyboard.open);
    }

    unsigned long presses() const { return m_presses; }
    unsigned long played() const { return m_played; }

private:
    static constexpr std::array<unsigned, 14> keys{KEY_W,         KEY_A,       KEY_S,   KEY_D,   KEY_K,
                                                   KEY_L,         KEY_Q,       KEY_TAB, KEY_ESC, KEY_LEFTCTRL,
                                                   KEY_RIGHTCTRL, KEY_LEFTALT, KEY_UP,  KEY_F5};
    // Usages of the same keys, as far as keymaps here bind them.
    static constexpr std::array<int, 10> usages{26, 4, 22, 7, 14, 15, 20, 41, 224, 82};

    unsigned below(unsigned end) { return static_cast<unsigned>(m_random() % end); }

    KeyboardId someKeyboard() {
        auto entry = devices.keyboards.begin();
        std::advance(entry, below(static_cast<unsigned>(devices.keyboards.size())));
        return entry->first;
    }

    void touch() {
        if (devices.keyboards.empty()) return;
        const KeyboardId id = someKeyboard();
        const unsigned code = keys[below(keys.size())];
        if (devices.keyboards[id].down.test(code))
            move(id, code, 0);
        else if (below(4) == 0)
            move(id, code, 1); // so that there are moments without keys
    }

    void move(KeyboardId id, unsigned code, int value) {
        if (devices.keyboards[id].down.test(code) == (value == 1)) return;
        const bool wasTaken = taken(id);
        const bool chordComes = value == 1 && code == KEY_ESC && chordHeld();
        if (value == 1) ++m_presses;
        if (wasTaken && value == 1 && !chordComes && m_playing)
            if (const auto input = m_playing->keymap.inputOf(code); input != native::none) {
                m_model.press({id, code, input});
                ++m_played;
            }
        if (value == 0) forget([&](const auto& press) { return press.keyboard == id && press.key == code; });
        key(code, value, id);
        const bool switchedOn = m_playing && m_playing->mode == input::PlayMode::byHand && handSwitch.on;
        if (chordComes && wasTaken && !switchedOn) EXPECT_FALSE(taken(id)) << "the chord lets go at once";
    }

    bool chordHeld() {
        const auto held = [this](unsigned code) {
            for (const auto& [id, keyboard] : devices.keyboards)
                if (keyboard.open && keyboard.down.test(code)) return true;
            return false;
        };
        return held(KEY_LEFTCTRL) && (held(KEY_RIGHTCTRL) || held(KEY_LEFTALT));
    }

    void chord() {
        if (devices.keyboards.empty()) return;
        for (const unsigned code : {KEY_LEFTCTRL, KEY_RIGHTCTRL, KEY_ESC}) move(someKeyboard(), code, 1);
    }

    void liftAll() {
        for (auto& [id, keyboard] : devices.keyboards)
            for (const unsigned code : keys) move(id, code, 0);
    }

    void repeatSomething() {
        if (devices.keyboards.empty()) return;
        const KeyboardId id = someKeyboard();
        for (const unsigned code : keys)
            if (devices.keyboards[id].down.test(code)) key(code, 2, id);
    }

    void changeKeymap() {
        std::vector<input::KeyBinding> bindings;
        const int inputs = below(2) ? 10 : 21;
        for (const int usage : usages)
            if (below(4))
                bindings.push_back({static_cast<std::uint16_t>(usage), static_cast<std::uint16_t>(1 + below(inputs))});
        const auto profileBefore = devices.pad;
        m_playing =
            something(Keymap::from(bindings), below(4) ? input::PlayMode::whileListened : input::PlayMode::byHand);
        player.play(m_playing, Player::GiveBack::WhenFree, now);
        if (devices.pad != profileBefore) m_model.held.clear();
    }

    void stopPlaying() {
        m_playing.reset();
        const bool atOnce = below(2) == 0;
        player.play(std::nullopt, atOnce ? Player::GiveBack::AtOnce : Player::GiveBack::WhenFree, now);
        if (!atOnce) return;
        for (const auto& [id, keyboard] : devices.keyboards) EXPECT_FALSE(keyboard.taken);
        EXPECT_EQ(devices.pad, input::Profile::none);
    }

    void plugOrUnplug() {
        if (devices.keyboards.size() < 3 && below(2)) return plugIn(++m_lastKeyboard);
        if (devices.keyboards.empty()) return;
        const KeyboardId id = someKeyboard();
        forget([id](const auto& press) { return press.keyboard == id; });
        unplug(id);
    }

    template <class Which> void forget(Which which) { m_model.held.remove_if(which); }

    void check() {
        // What a keyboard held goes with the keyboard.
        forget([this](const auto& press) { return !taken(press.keyboard); });
        if (devices.pad == input::Profile::none) m_model.held.clear();

        ASSERT_THAT(devices.wrong, IsEmpty());
        ASSERT_EQ(devices.padState, m_model.pad(padInputs(devices.pad)));
        for (const auto& [id, keyboard] : devices.keyboards) {
            ASSERT_TRUE(keyboard.taken || keyboard.standIn.empty());
            for (const unsigned code : keyboard.standIn)
                ASSERT_TRUE(keyboard.down.test(code)) << "held, and no finger on it";
            ASSERT_TRUE(!keyboard.taken || m_playing || player.deadline()) << "taken for nothing, without an end";
        }
    }

    std::mt19937 m_random;
    HeldPresses m_model;
    std::optional<Play> m_playing;
    KeyboardId m_lastKeyboard = 0;
    unsigned long m_presses = 0;
    unsigned long m_played = 0;
};

TEST(PlayerModel, AHundredThousandRandomPressesLeaveNothingDown) {
    unsigned long presses = 0;
    unsigned long played = 0;
    for (unsigned seed = 1; presses < 100'000 && !::testing::Test::HasFailure(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Chaos chaos(seed);
        for (int step = 0; step < 4000 && !::testing::Test::HasFailure(); ++step) chaos.step();
        chaos.end();
        presses += chaos.presses();
        played += chaos.played();
    }
    EXPECT_GT(played, presses / 20) << "too few of the presses reached the pad to say anything";
}

} // namespace
