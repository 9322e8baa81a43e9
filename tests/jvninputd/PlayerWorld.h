#pragma once

#include "services/jvninputd/Player.h"
#include "tests/jvninputd/FakeDevices.h"

#include <initializer_list>
#include <utility>

namespace jvninputd::fakes {

// The keymap that a user without one has: W A S D, I J K L, 2 and 8, Escape.
inline constexpr std::initializer_list<std::pair<int, int>> defaultBindings = {
    {26, 3}, {4, 2}, {22, 4}, {7, 1}, {12, 8}, {13, 7}, {14, 5}, {15, 6}, {31, 9}, {37, 10}, {41, 21}};

inline Keymap keymapOf(std::initializer_list<std::pair<int, int>> bindings) {
    std::vector<input::KeyBinding> pairs;
    for (const auto& [usage, code] : bindings)
        pairs.push_back({static_cast<std::uint16_t>(usage), static_cast<std::uint16_t>(code)});
    return Keymap::from(pairs);
}

// A Player with fake devices, fingers on their keyboards, and a clock that the test holds.
struct PlayerWorld {
    FakeDevices devices;
    Player player{devices};
    HandSwitch handSwitch;
    Moment now{};

    Play something(Keymap keymap = keymapOf(defaultBindings), input::PlayMode mode = input::PlayMode::whileListened) {
        const auto profile = keymap.needsExtended() ? input::Profile::extended : input::Profile::plain;
        return {keymap, mode, profile, &handSwitch};
    }

    void plugIn(KeyboardId id) {
        devices.keyboards[id] = {};
        player.keyboardAdded(id, now);
    }
    void unplug(KeyboardId id) {
        player.keyboardRemoved(id, now);
        devices.keyboards.erase(id);
    }

    // A keyboard (1), something to play, and a game that listens.
    void startGame(Keymap keymap = keymapOf(defaultBindings)) {
        plugIn(1);
        player.play(something(keymap), Player::GiveBack::WhenFree, now);
        player.setListening(true, now);
    }

    void key(unsigned code, int value, KeyboardId id = 1) {
        FakeDevices::Keyboard& keyboard = devices.keyboards[id];
        if (value < 2) keyboard.down.set(code, value == 1);
        if (!keyboard.open || keyboard.otherHasIt) return;
        const Event event{EV_KEY, static_cast<std::uint16_t>(code), value};
        player.frame(id, {&event, 1}, now);
    }
    void press(unsigned code, KeyboardId id = 1) { key(code, 1, id); }
    void release(unsigned code, KeyboardId id = 1) { key(code, 0, id); }

    // Lets time go by, and the Player act at its deadlines.
    void pass(Duration duration) {
        const Moment end = now + duration;
        while (player.deadline() && *player.deadline() <= end) {
            now = std::max(now, *player.deadline());
            player.timePassed(now);
        }
        now = end;
    }

    bool taken(KeyboardId id = 1) { return devices.keyboards[id].taken; }
};

} // namespace jvninputd::fakes
