#include "app/help/facts.h"

#include "kit/foundation/translation.h"

namespace app {

using seat::translated;

namespace {

using Mood = StatusRow::Mood;

Fact readinessFact(input::Readiness readiness) {
    switch (readiness) {
    case input::Readiness::ungoverned:
        return {translated("Not Chosen"), Mood::Plain,
                translated("Choose Keyboard as the controller, and this computer’s keyboard is one.")};
    case input::Readiness::notInFront:
        return {translated("Waiting"), Mood::Plain, translated("Another session is in front.")};
    case input::Readiness::locked:
        return {translated("Waiting"), Mood::Plain, translated("The session is locked.")};
    case input::Readiness::noKeyboard:
        return {translated("None Found"), Mood::Trouble,
                translated("Plug in a keyboard, or connect one in the system’s Bluetooth settings.")};
    case input::Readiness::noPad:
        return {translated("Not Ready"), Mood::Trouble,
                translated("The gamepad could not be made. “journalctl -u jvninputd” in a terminal says why.")};
    case input::Readiness::waitingForGame:
        return {translated("Ready"), Mood::Plain, translated("It becomes a gamepad as soon as a game listens to one.")};
    case input::Readiness::switchedOff:
        return {translated("Ready"), Mood::Plain,
                translated("Hold both Ctrl keys and press Escape to make it a gamepad.")};
    case input::Readiness::paused:
        return {translated("Paused"), Mood::Plain, translated("Hold both Ctrl keys and press Escape to go on.")};
    case input::Readiness::waitingForKeys:
        return {translated("Ready"), Mood::Plain, translated("It is a gamepad as soon as none of its keys is down.")};
    case input::Readiness::playing:
        return {translated("Playing"), Mood::Plain};
    }
    return {translated("Not Known")};
}

} // namespace

Fact daemonFact(const HelpFacts& facts) {
    if (facts.isSimulated) return {translated("Simulated")};
    if (facts.status || facts.isDaemonReached) return {translated("Running")};
    if (!facts.startProblem.empty()) return {translated("Not Running"), Mood::Trouble, facts.startProblem};
    if (!facts.isDaemonInstalled)
        return {translated("Not Found"), Mood::Trouble,
                translated("It comes with Joyvane’s package. Install that, and log in anew.")};
    return {translated("Not Running"), Mood::Trouble,
            translated("It starts by itself when you log in or the page needs it.")};
}

Fact bluetoothFact(const HelpFacts& facts) {
    if (!facts.status) return {translated("Not Known")};
    switch (facts.status->bluetooth) {
    case daemon_status::Bluetooth::unknown:
        return {translated("Not Known")};
    case daemon_status::Bluetooth::absent:
        return {translated("None"), facts.status->isKeyboardChosen ? Mood::Plain : Mood::Trouble,
                translated(
                    "There is no adapter, or the system’s Bluetooth service does not run. A keyboard needs neither.")};
    case daemon_status::Bluetooth::blocked:
        return {translated("Blocked"), facts.status->isKeyboardChosen ? Mood::Plain : Mood::Trouble,
                translated("A switch or the flight mode keeps it off.")};
    case daemon_status::Bluetooth::off:
        return {translated("Off"), Mood::Plain, translated("Pairing or connecting a controller switches it on.")};
    case daemon_status::Bluetooth::on:
        break;
    }
    return {translated("On")};
}

Fact keyboardFact(const HelpFacts& facts) {
    if (facts.isSimulated)
        return {translated("Not Played"), Mood::Plain, translated("This window has pretend controllers only.")};
    if (!facts.status) return {translated("Not Known")};
    if (!facts.status->isKeyboardChosen) return readinessFact(input::Readiness::ungoverned);
    switch (facts.status->inputService) {
    case daemon_status::InputService::unknown:
        return {translated("Not Known")};
    case daemon_status::InputService::unreachable:
        return {translated("Not Ready"), Mood::Trouble,
                translated(
                    "The input service does not answer. “systemctl status jvninputd.socket” in a terminal says more.")};
    case daemon_status::InputService::connected:
        break;
    }
    return readinessFact(facts.status->readiness);
}

} // namespace app
