#include "app/help/pad_text.h"

#include "app/reasons.h"
#include "kit/foundation/translation.h"
#include "platform/foundation/NSLocalizedString.h"

#include <array>

namespace app {

using seat::translated;

namespace {

// By native code, from 1.
constexpr std::array inputNames{
    NSLocalizable("right"),
    NSLocalizable("left"),
    NSLocalizable("up"),
    NSLocalizable("down"),
    NSLocalizable("A"),
    NSLocalizable("B"),
    NSLocalizable("X"),
    NSLocalizable("Y"),
    NSLocalizable("L1"),
    NSLocalizable("R1"),
    NSLocalizable("left stick right"),
    NSLocalizable("left stick left"),
    NSLocalizable("left stick up"),
    NSLocalizable("left stick down"),
    NSLocalizable("right stick right"),
    NSLocalizable("right stick left"),
    NSLocalizable("right stick up"),
    NSLocalizable("right stick down"),
    NSLocalizable("L2"),
    NSLocalizable("R2"),
    NSLocalizable("Pause"),
};

// The inputs that are down, as in "up, A, L1"; empty when there are none.
std::string namesOf(std::uint32_t inputs) {
    std::string names;
    for (std::size_t i = 0; i < inputNames.size(); ++i)
        if (inputs >> (i + 1) & 1) names += (names.empty() ? "" : ", ") + translated(inputNames[i]);
    return names;
}

} // namespace

PadText textOf(const input::State& state) {
    switch (state.readiness) {
    case input::Readiness::ungoverned:
        return {translated("No keyboard plays"),
                translated("Choose Keyboard as the controller on the page, and come back.")};
    case input::Readiness::notInFront:
    case input::Readiness::locked:
        return {translated("Waiting"), translated("Your session is locked, or another one is in front.")};
    case input::Readiness::noKeyboard:
        return {translated("No keyboard found"),
                translated("Plug one in, or connect one in the system’s Bluetooth settings.")};
    case input::Readiness::noPad:
        return {translated("There is no gamepad"),
                translated("It could not be made. “journalctl -u jvninputd” in a terminal says why.")};
    case input::Readiness::waitingForGame:
        return {translated("One moment"), translated("The keyboard becomes a gamepad.")};
    case input::Readiness::switchedOff:
        return {translated("Switched off"),
                translated("Hold both Ctrl keys and press Escape: the keyboard is a gamepad then.")};
    case input::Readiness::paused:
        return {translated("Paused"), translated("Hold both Ctrl keys and press Escape to go on.")};
    case input::Readiness::waitingForKeys:
        return {translated("Let go of all keys"), translated("The keyboard becomes a gamepad while none is down.")};
    case input::Readiness::playing:
        break;
    }
    const std::string inputs = namesOf(state.inputs);
    return {
        inputs.empty() ? translated("Press a key") : seat::filled(translated("It arrives as %1"), {inputs}),
        translated("Keys of the keymap go to the gamepad alone, as in a game. Hold both Ctrl keys and press Escape to "
                   "pause.")};
}

PadText problemText(const std::string& problem) {
    if (problem.empty()) return {translated("One moment"), translated("The input service is asked.")};
    return {translated("There is nothing to see"),
            seat::filled(translated("The reason: %1."), {reasonInUsersWords(problem)})};
}

PadText simulatedText() {
    return {translated("No keyboard plays here"),
            translated("This window has pretend controllers only. Open Joyvane itself to try the keyboard.")};
}

} // namespace app
