#include "tests/jvninputd/PlayerWorld.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

using namespace jvninputd;

// Keymaps, and what keyboards send while they change: pairs of bytes, the first says what happens.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    jvninputd::fakes::PlayerWorld world;
    world.plugIn(1);
    world.plugIn(2);
    for (; size >= 4; data += 4, size -= 4) {
        const auto word = static_cast<std::uint16_t>(data[2] | data[3] << 8);
        const KeyboardId keyboard = 1 + data[1] % 2;
        switch (data[0] % 8) {
        case 0: {
            const std::size_t count = std::min<std::size_t>(data[1], (size - 4) / sizeof(input::KeyBinding));
            std::vector<input::KeyBinding> bindings(count);
            if (count > 0) std::memcpy(bindings.data(), data + 4, count * sizeof(input::KeyBinding));
            const Keymap keymap = Keymap::from(bindings);
            world.player.play(world.something(keymap, static_cast<input::PlayMode>(word & 1)),
                              Player::GiveBack::WhenFree, world.now);
            break;
        }
        case 1:
            world.player.setListening(word & 1 && world.devices.pad != input::Profile::none, world.now);
            break;
        case 2:
            world.player.play(std::nullopt, word & 1 ? Player::GiveBack::AtOnce : Player::GiveBack::WhenFree,
                              world.now);
            break;
        case 3:
            world.pass(std::chrono::milliseconds(word % 2000));
            break;
        case 4: {
            const Event event{data[1], word, static_cast<std::int32_t>(word)};
            if (event.type != EV_KEY && world.devices.keyboards[keyboard].open)
                world.player.frame(keyboard, {&event, 1}, world.now);
            break;
        }
        default:
            // A key that is no key is told of like any other; the fake kernel has no place for it.
            if (word < KEY_CNT) world.key(word, data[0] % 8 - 5, keyboard);
        }
        if (!world.devices.wrong.empty()) std::abort();
    }

    world.player.play(std::nullopt, Player::GiveBack::AtOnce, world.now);
    for (const auto& [id, keyboard] : world.devices.keyboards)
        if (keyboard.taken || !keyboard.standIn.empty()) std::abort();
    if (!world.devices.padState.empty() || !world.devices.wrong.empty()) std::abort();
    return 0;
}
