#include "app/help/pad_text.h"

#include "services/jvninput/state_text.h"

namespace app {

PadText textOf(const input::State& state) {
    const std::string chord = "Hold both Ctrl keys and press Escape";
    switch (state.readiness) {
    case input::Readiness::ungoverned:
        return {"No keyboard plays", "Choose Keyboard as the controller on the page, and come back."};
    case input::Readiness::notInFront:
    case input::Readiness::locked:
        return {"Waiting", "Your session is locked, or another one is in front."};
    case input::Readiness::noKeyboard:
        return {"No keyboard found", "Plug one in, or connect one in the system’s Bluetooth settings."};
    case input::Readiness::noPad:
        return {"There is no gamepad", "It could not be made. “journalctl -u jvninputd” in a terminal says why."};
    case input::Readiness::waitingForGame:
        return {"One moment", "The keyboard becomes a gamepad."};
    case input::Readiness::switchedOff:
        return {"Switched off", chord + ": the keyboard is a gamepad then."};
    case input::Readiness::paused:
        return {"Paused", chord + " to go on."};
    case input::Readiness::waitingForKeys:
        return {"Let go of all keys", "The keyboard becomes a gamepad while none is down."};
    case input::Readiness::playing:
        break;
    }
    const std::string inputs = jvninput::inputsText(state.inputs);
    return {inputs.empty() ? "Press a key" : "It arrives as " + inputs,
            "Keys of the keymap go to the gamepad alone, as in a game. " + chord + " to pause."};
}

PadText problemText(const std::string& problem) {
    if (problem.empty()) return {"One moment", "The input service is asked."};
    return {"There is nothing to see", "The reason: " + problem + "."};
}

PadText simulatedText() {
    return {"No keyboard plays here",
            "This window has pretend controllers only. Open Joyvane itself to try the keyboard."};
}

} // namespace app
