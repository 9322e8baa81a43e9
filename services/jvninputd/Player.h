#pragma once

#include "services/jvninputd/Devices.h"
#include "services/jvninputd/Keymap.h"
#include "services/jvninputd/PadInputs.h"
#include "services/jvninputd/PlayedKeyboard.h"
#include "services/jvninputd/moment.h"

#include <map>
#include <optional>
#include <vector>

namespace jvninputd {

// The switch of the mode "by hand". It outlasts a lock, and so is kept by whoever keeps the settings.
struct HandSwitch {
    bool on = false;
};

// What somebody who governs wants played.
struct Play {
    // As these settings say, which want the keyboard to play.
    static Play from(const input::Settings& settings);

    Keymap keymap;
    input::PlayMode mode = input::PlayMode::whileListened;
    input::Profile profile = input::Profile::plain; // not none
    HandSwitch* handSwitch = nullptr;               // not owned; outlives the Play
};

// Decides, from what keyboards, games and clients do, what the pad shows, what the desktop gets and who has the
// keyboards. It knows no device and no clock: time and events come in, calls to Devices go out.
//
// Whatever happens, a key that was let through as pressed (to the pad or to the desktop) is let through as released, no
// later than when its keyboard is given back.
class Player {
public:
    // Not owned.
    explicit Player(Devices& devices) : m_devices(devices) {}

    enum class GiveBack {
        WhenFree, // each keyboard at a moment when none of its keys is down, within giveBackTimeout
        AtOnce,
    };
    // How long giving back waits for such a moment.
    static constexpr Duration giveBackTimeout = std::chrono::seconds(1);

    // Something to play, or nothing: then keyboards are given back and the pad goes.
    void play(const std::optional<Play>& what, GiveBack giveBack, Moment now);

    void keyboardAdded(KeyboardId keyboard, Moment now);
    void keyboardRemoved(KeyboardId keyboard, Moment now);

    // Whether a game listens to the pad. Forgotten by itself when the pad goes.
    void setListening(bool isListening, Moment now);

    // One frame of an open keyboard's events, without the one that ends it.
    void frame(KeyboardId keyboard, std::span<const Event> events, Moment now);

    // To be called at the deadline, where there is one.
    void timePassed(Moment now);
    std::optional<Moment> deadline() const { return m_giveBackEnds; }

    // Readiness::ungoverned stands for every reason for which there is nothing to play.
    input::Readiness readiness() const;
    input::Profile profile() const { return m_pad; }
    input::PlayMode mode() const { return m_playing ? m_playing->mode : input::PlayMode::whileListened; }
    bool listening() const { return m_gameListens; }
    InputSet inputs() const { return m_shown; }
    std::size_t keyboardCount() const { return m_keyboards.size(); }
    std::size_t takenCount() const;

private:
    enum class Chord { none, pressed };

    bool wantsKeyboards() const;
    bool wantsToHear() const;
    Chord key(PlayedKeyboard& keyboard, Event event);
    PlayedKeyboard::Route newRoute(std::uint16_t key, Chord chord) const;
    bool chordHeld() const;
    void pressChord();
    void update(Moment now);
    void giveBack(KeyboardId id, PlayedKeyboard& keyboard);
    void giveBackAll();
    void letGo(KeyboardId id, PlayedKeyboard& keyboard);
    void setPad(input::Profile profile);
    void show();

    Devices& m_devices;
    std::map<KeyboardId, PlayedKeyboard> m_keyboards;
    std::optional<Play> m_playing;
    PadInputs m_inputsDown;
    InputSet m_shown = 0;
    input::Profile m_pad = input::Profile::none;
    bool m_padFailed = false;
    bool m_gameListens = false;
    bool m_paused = false;
    std::optional<Moment> m_giveBackEnds;
    std::vector<Event> m_padFrame;     // kept for its memory
    std::vector<Event> m_desktopFrame; // likewise
};

} // namespace jvninputd
