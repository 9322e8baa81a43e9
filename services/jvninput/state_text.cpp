#include "services/jvninput/state_text.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

namespace jvninput {

namespace {

// By native code, from 1.
constexpr std::array<std::string_view, 21> inputNames{"right",
                                                      "left",
                                                      "up",
                                                      "down",
                                                      "A",
                                                      "B",
                                                      "X",
                                                      "Y",
                                                      "L1",
                                                      "R1",
                                                      "left stick right",
                                                      "left stick left",
                                                      "left stick up",
                                                      "left stick down",
                                                      "right stick right",
                                                      "right stick left",
                                                      "right stick up",
                                                      "right stick down",
                                                      "L2",
                                                      "R2",
                                                      "Pause"};

// A device names itself: nothing of it may command a terminal.
std::string printable(const char* name) {
    std::string text(name, ::strnlen(name, input::keyboardNameSize));
    std::ranges::replace_if(
        text, [](char character) { return static_cast<unsigned char>(character) < ' ' || character == 0x7f; }, ' ');
    return text;
}

} // namespace

std::string readinessText(const input::State& state) {
    switch (state.readiness) {
    case input::Readiness::ungoverned:
        return "no keyboard is to play: choose the keyboard on the settings page";
    case input::Readiness::notInFront:
        return "another session is in front";
    case input::Readiness::locked:
        return "the session is locked";
    case input::Readiness::noKeyboard:
        return "no keyboard is plugged in";
    case input::Readiness::noPad:
        return "the gamepad could not be made; see the journal of jvninputd";
    case input::Readiness::waitingForGame:
        return "waiting for a game";
    case input::Readiness::switchedOff:
        return "switched off; both Ctrl keys and Escape switch it on";
    case input::Readiness::paused:
        return "paused; both Ctrl keys and Escape go on";
    case input::Readiness::waitingForKeys:
        return "waiting until no key is down";
    case input::Readiness::playing:
        return "playing";
    }
    return "unknown to this version";
}

std::string profileText(input::Profile profile) {
    switch (profile) {
    case input::Profile::none:
        return "none";
    case input::Profile::plain:
        return "plain";
    case input::Profile::extended:
        return "extended";
    }
    return "unknown to this version";
}

std::string refusalText(input::RefusalReason reason) {
    switch (reason) {
    case input::RefusalReason::notPermitted:
        return "only users with a session at this computer's seat are let in";
    case input::RefusalReason::version:
        return "it is of another version";
    case input::RefusalReason::roleTaken:
        return "as many others as it takes are connected already";
    case input::RefusalReason::malformed:
        return "it did not understand";
    case input::RefusalReason::tooManyMessages:
        return "too many messages";
    case input::RefusalReason::busy:
        return "it has too many connections";
    }
    return "for a reason unknown to this version";
}

std::string inputsText(std::uint32_t inputs) {
    std::string text;
    for (std::size_t i = 0; i < inputNames.size(); ++i) {
        if (!(inputs >> (i + 1) & 1)) continue;
        if (!text.empty()) text += ", ";
        text += inputNames[i];
    }
    return text;
}

std::string summary(const input::State& state, const input::Keyboards& keyboards) {
    std::string text = "State: " + readinessText(state);
    text += "\nGamepad: " + profileText(state.profile);
    text += std::string("\nA game listens: ") + (state.gameListens ? "yes" : "no");
    text += std::string("\nPlays: ") +
            (state.mode == input::PlayMode::byHand ? "when switched on" : "while a game listens");
    text += "\nKeyboards: " + std::to_string(keyboards.count);
    const std::size_t named = std::min<std::size_t>(keyboards.count, input::maximumKeyboardNames);
    for (std::size_t i = 0; i < named; ++i) text += "\n  " + printable(keyboards.names[i]);
    if (keyboards.count > named) text += "\n  ...";
    return text;
}

} // namespace jvninput
