#include "services/jvninputd/Player.h"

#include <algorithm>
#include <utility>

namespace jvninputd {

Play Play::from(const input::Settings& settings) {
    Play play;
    play.keymap = Keymap::from({settings.bindings, settings.bindingCount});
    play.mode = settings.mode;
    play.profile =
        settings.forceExtended || play.keymap.needsExtended() ? input::Profile::extended : input::Profile::plain;
    return play;
}

void Player::play(const std::optional<Play>& what, GiveBack giveBack, Moment now) {
    m_playing = what;
    if (m_playing && m_playing->mode != input::PlayMode::byHand) m_playing->handSwitch->on = false;
    if (!m_playing && giveBack == GiveBack::AtOnce) giveBackAll();
    // Without anything to play the pad stays until the last keyboard is given back.
    m_padFailed = false;
    if (m_playing && m_playing->profile != m_pad) setPad(m_playing->profile);
    update(now);
}

void Player::keyboardAdded(KeyboardId keyboard, Moment now) {
    m_keyboards.try_emplace(keyboard);
    update(now);
}

void Player::keyboardRemoved(KeyboardId id, Moment now) {
    const auto found = m_keyboards.find(id);
    if (found == m_keyboards.end()) return;
    // Its stand-in on the desktop goes with it; what it held down on the pad does not by itself.
    for (const auto& route : found->second.routes)
        if (route.to == PlayedKeyboard::Route::To::pad) m_inputsDown.release(route.input);
    if (found->second.open) m_devices.close(id);
    m_keyboards.erase(found);
    show();
    update(now);
}

void Player::setListening(bool isListening, Moment now) {
    m_gameListens = isListening;
    if (!m_gameListens) m_paused = false;
    update(now);
}

void Player::timePassed(Moment now) {
    if (m_giveBackEnds && now >= *m_giveBackEnds) giveBackAll();
    update(now);
}

input::Readiness Player::readiness() const {
    if (!m_playing) return input::Readiness::ungoverned;
    if (m_padFailed) return input::Readiness::noPad;
    if (m_keyboards.empty()) return input::Readiness::noKeyboard;
    if (!wantsKeyboards()) {
        if (m_playing->mode == input::PlayMode::byHand) return input::Readiness::switchedOff;
        return m_paused ? input::Readiness::paused : input::Readiness::waitingForGame;
    }
    return takenCount() > 0 ? input::Readiness::playing : input::Readiness::waitingForKeys;
}

std::size_t Player::takenCount() const {
    return static_cast<std::size_t>(
        std::ranges::count_if(m_keyboards, [](const auto& entry) { return entry.second.taken; }));
}

bool Player::wantsKeyboards() const {
    if (!m_playing || m_pad == input::Profile::none) return false;
    return m_playing->mode == input::PlayMode::byHand ? m_playing->handSwitch->on : m_gameListens && !m_paused;
}

// The chord can be heard only where keys are read; where it would change nothing they are not.
bool Player::wantsToHear() const {
    return m_playing && m_pad != input::Profile::none && (m_playing->mode == input::PlayMode::byHand || m_gameListens);
}

// Brings keyboards and pad to what is wanted, as far as that is possible at this moment.
void Player::update(Moment now) {
    const bool wanted = wantsKeyboards();
    const bool heard = wantsToHear();
    bool waiting = false;
    for (auto& [id, keyboard] : m_keyboards) {
        if (heard && !keyboard.open) {
            keyboard.down = m_devices.open(id);
            keyboard.open = true;
        }
        // Where that does not succeed the keyboard's next event is the time to try again.
        if (wanted && !keyboard.taken && keyboard.down.none())
            keyboard.taken = m_devices.take(id, keyboard.down) == Devices::Taken::yes;
        if (!wanted && keyboard.taken && keyboard.down.none()) giveBack(id, keyboard);
        if (!heard && keyboard.open && !keyboard.taken) {
            m_devices.close(id);
            keyboard.open = false;
            keyboard.down.reset();
        }
        waiting = waiting || (!wanted && keyboard.taken);
    }

    if (!waiting)
        m_giveBackEnds.reset();
    else if (!m_giveBackEnds)
        m_giveBackEnds = now + giveBackTimeout;
    if (!waiting && !m_playing && m_pad != input::Profile::none) setPad(input::Profile::none);
}

// Whatever this keyboard holds down, on the pad and on the desktop, is let go.
void Player::letGo(KeyboardId id, PlayedKeyboard& keyboard) {
    m_desktopFrame.clear();
    for (const auto& route : std::exchange(keyboard.routes, {})) {
        if (route.to == PlayedKeyboard::Route::To::pad) m_inputsDown.release(route.input);
        if (route.to == PlayedKeyboard::Route::To::desktop) m_desktopFrame.push_back({EV_KEY, route.key, 0});
    }
    show();
    if (!m_desktopFrame.empty()) m_devices.forward(id, m_desktopFrame);
}

void Player::giveBack(KeyboardId id, PlayedKeyboard& keyboard) {
    letGo(id, keyboard);
    m_devices.giveBack(id);
    keyboard.taken = false;
}

void Player::giveBackAll() {
    for (auto& [id, keyboard] : m_keyboards)
        if (keyboard.taken) giveBack(id, keyboard);
}

void Player::setPad(input::Profile profile) {
    // Nothing that is held now shows on the new pad: its release goes nowhere.
    for (auto& [id, keyboard] : m_keyboards)
        for (auto& route : keyboard.routes)
            if (route.to == PlayedKeyboard::Route::To::pad) route.to = PlayedKeyboard::Route::To::nowhere;
    m_inputsDown = {};
    if (m_pad != input::Profile::none) show();
    m_pad = m_devices.makePad(profile) ? profile : input::Profile::none;
    m_padFailed = m_pad != profile;
    m_shown = 0;
    m_gameListens = false;
    m_paused = false;
}

// Brings the pad to what is down.
void Player::show() {
    const InputSet down = m_inputsDown.down() & padInputs(m_pad);
    if (down == m_shown) return;
    m_padFrame.clear();
    appendPadEvents(m_shown, down, m_padFrame);
    m_shown = down;
    m_devices.emit(m_padFrame);
}

} // namespace jvninputd
