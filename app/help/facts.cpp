#include "app/help/facts.h"

namespace app {

namespace {

using Mood = StatusRow::Mood;

Fact readinessFact(input::Readiness readiness) {
    switch (readiness) {
    case input::Readiness::ungoverned:
        return {"Not Chosen", Mood::Plain, "Choose Keyboard as the controller, and this computer’s keyboard is one."};
    case input::Readiness::notInFront:
        return {"Waiting", Mood::Plain, "Another session is in front."};
    case input::Readiness::locked:
        return {"Waiting", Mood::Plain, "The session is locked."};
    case input::Readiness::noKeyboard:
        return {"None Found", Mood::Trouble, "Plug in a keyboard, or connect one in the system’s Bluetooth settings."};
    case input::Readiness::noPad:
        return {"Not Ready", Mood::Trouble,
                "The gamepad could not be made. “journalctl -u jvninputd” in a terminal says why."};
    case input::Readiness::waitingForGame:
        return {"Ready", Mood::Plain, "It becomes a gamepad as soon as a game listens to one."};
    case input::Readiness::switchedOff:
        return {"Ready", Mood::Plain, "Hold both Ctrl keys and press Escape to make it a gamepad."};
    case input::Readiness::paused:
        return {"Paused", Mood::Plain, "Hold both Ctrl keys and press Escape to go on."};
    case input::Readiness::waitingForKeys:
        return {"Ready", Mood::Plain, "It is a gamepad as soon as none of its keys is down."};
    case input::Readiness::playing:
        return {"Playing", Mood::Plain};
    }
    return {"Not Known"};
}

} // namespace

Fact daemonFact(const HelpFacts& facts) {
    if (facts.isSimulated) return {"Simulated"};
    if (facts.status || facts.isDaemonReached) return {"Running"};
    if (!facts.startProblem.empty()) return {"Not Running", Mood::Trouble, facts.startProblem};
    if (!facts.isDaemonInstalled)
        return {"Not Found", Mood::Trouble, "It comes with Joyvane’s package. Install that, and log in anew."};
    return {"Not Running", Mood::Trouble, "It starts by itself when you log in or the page needs it."};
}

Fact bluetoothFact(const HelpFacts& facts) {
    if (!facts.status) return {"Not Known"};
    switch (facts.status->bluetooth) {
    case daemon_status::Bluetooth::unknown:
        return {"Not Known"};
    case daemon_status::Bluetooth::absent:
        return {"None", facts.status->isKeyboardChosen ? Mood::Plain : Mood::Trouble,
                "There is no adapter, or the system’s Bluetooth service does not run. A keyboard needs neither."};
    case daemon_status::Bluetooth::blocked:
        return {"Blocked", facts.status->isKeyboardChosen ? Mood::Plain : Mood::Trouble,
                "A switch or the flight mode keeps it off."};
    case daemon_status::Bluetooth::off:
        return {"Off", Mood::Plain, "Pairing or connecting a controller switches it on."};
    case daemon_status::Bluetooth::on:
        break;
    }
    return {"On"};
}

Fact keyboardFact(const HelpFacts& facts) {
    if (facts.isSimulated) return {"Not Played", Mood::Plain, "This window has pretend controllers only."};
    if (!facts.status) return {"Not Known"};
    if (!facts.status->isKeyboardChosen) return readinessFact(input::Readiness::ungoverned);
    switch (facts.status->inputService) {
    case daemon_status::InputService::unknown:
        return {"Not Known"};
    case daemon_status::InputService::unreachable:
        return {"Not Ready", Mood::Trouble,
                "The input service does not answer. “systemctl status jvninputd.socket” in a terminal says more."};
    case daemon_status::InputService::connected:
        break;
    }
    return readinessFact(facts.status->readiness);
}

} // namespace app
