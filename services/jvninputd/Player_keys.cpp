#include "services/jvninputd/Player.h"

#include <algorithm>

namespace jvninputd {

namespace {

constexpr std::int32_t released = 0;
constexpr std::int32_t repeated = 2;

} // namespace

void Player::frame(KeyboardId id, std::span<const Event> events, Moment now) {
    const auto found = m_keyboards.find(id);
    if (found == m_keyboards.end() || !found->second.open) return;
    PlayedKeyboard& keyboard = found->second;

    m_desktopFrame.clear();
    Chord chord = Chord::none;
    for (const Event event : events) {
        if (event.type == EV_KEY && event.code < KEY_CNT) {
            if (key(keyboard, event) == Chord::pressed) chord = Chord::pressed;
        } else if (keyboard.taken && (event.type == EV_REL || event.type == EV_ABS || event.type == EV_SW)) {
            // Wheels, knobs and switches. Scan codes (EV_MSC) stay here: they would tell of mapped keys.
            m_desktopFrame.push_back(event);
        }
    }
    if (!m_desktopFrame.empty()) m_devices.forward(id, m_desktopFrame);

    if (chord == Chord::pressed) pressChord();
    update(now);
}

// Notes the key, and passes it on while the keyboard is taken: to the pad now, to the desktop with the rest of the
// frame.
Player::Chord Player::key(PlayedKeyboard& keyboard, Event event) {
    using Route = PlayedKeyboard::Route;
    const bool pressed = event.value != released && event.value != repeated;
    if (pressed) keyboard.down.set(event.code);
    if (event.value == released) keyboard.down.reset(event.code);
    const Chord chord = pressed && event.code == KEY_ESC && chordHeld() ? Chord::pressed : Chord::none;
    if (!keyboard.taken) return chord;

    auto route = keyboard.routeOf(event.code);
    if (pressed && route == keyboard.routes.end()) {
        route = keyboard.routes.insert(route, newRoute(event.code, chord));
        if (route->to == Route::To::pad) m_inputsDown.press(route->input);
    }
    if (route == keyboard.routes.end()) return chord; // pressed before the keyboard was taken
    if (route->to == Route::To::desktop) m_desktopFrame.push_back(event);
    if (event.value == released) {
        if (route->to == Route::To::pad) m_inputsDown.release(route->input);
        keyboard.routes.erase(route);
    }
    show();
    return chord;
}

PlayedKeyboard::Route Player::newRoute(std::uint16_t key, Chord chord) const {
    using Route = PlayedKeyboard::Route;
    if (chord == Chord::pressed) return {key, Route::To::nowhere, native::none};
    const native::Code input = m_playing ? m_playing->keymap.inputOf(key) : native::none;
    return {key, input != native::none ? Route::To::pad : Route::To::desktop, input};
}

// The keys of all keyboards count together. The second form is for keyboards without a right Ctrl.
bool Player::chordHeld() const {
    const auto held = [this](unsigned key) {
        return std::ranges::any_of(m_keyboards, [key](const auto& entry) { return entry.second.down.test(key); });
    };
    return held(KEY_LEFTCTRL) && (held(KEY_RIGHTCTRL) || held(KEY_LEFTALT));
}

void Player::pressChord() {
    if (m_playing && m_playing->mode == input::PlayMode::byHand)
        m_playing->handSwitch->on = !m_playing->handSwitch->on;
    else if (m_gameListens)
        m_paused = !m_paused;
    if (!wantsKeyboards()) giveBackAll();
}

} // namespace jvninputd
