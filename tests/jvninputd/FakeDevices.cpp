#include "tests/jvninputd/FakeDevices.h"

#include <algorithm>

namespace jvninputd::fakes {

std::string text(std::span<const Event> events) {
    std::string all;
    for (const Event event : events) {
        if (!all.empty()) all += ' ';
        all += std::to_string(event.type) + ':' + std::to_string(event.code) + '=' + std::to_string(event.value);
    }
    return all;
}

KeySet FakeDevices::open(KeyboardId id) {
    calls.push_back("open " + std::to_string(id));
    if (keyboards[id].open) wrong.emplace_back("opened twice");
    keyboards[id].open = true;
    return keyboards[id].down;
}

void FakeDevices::close(KeyboardId id) {
    calls.push_back("close " + std::to_string(id));
    if (!keyboards[id].open) wrong.emplace_back("closed but not open");
    keyboards[id].open = keyboards[id].taken = false;
    keyboards[id].standIn.clear();
}

Devices::Taken FakeDevices::take(KeyboardId id, KeySet& keysDown) {
    Keyboard& keyboard = keyboards[id];
    if (!keyboard.open || keyboard.taken) wrong.emplace_back("taken twice, or not open");
    keysDown = keyboard.down;
    if (keyboard.otherHasIt || keyboard.down.any()) return Taken::no;
    calls.push_back("take " + std::to_string(id));
    keyboard.taken = true;
    return Taken::yes;
}

void FakeDevices::giveBack(KeyboardId id) {
    calls.push_back("give back " + std::to_string(id));
    if (!keyboards[id].taken) wrong.emplace_back("given back but not taken");
    if (!keyboards[id].standIn.empty()) wrong.emplace_back("given back while the stand-in holds keys");
    keyboards[id].taken = false;
}

void FakeDevices::forward(KeyboardId id, std::span<const Event> events) {
    calls.push_back("desktop " + std::to_string(id) + " " + text(events));
    if (!keyboards[id].taken) wrong.emplace_back("forwarded for a keyboard that is not taken");
    for (const Event event : events) {
        if (event.type != EV_KEY) continue;
        if (event.value == 0) keyboards[id].standIn.erase(event.code);
        if (event.value == 1) keyboards[id].standIn.insert(event.code);
        if (event.value == 2 && !keyboards[id].standIn.contains(event.code))
            wrong.emplace_back("a repeat of a key that is up");
    }
}

bool FakeDevices::makePad(input::Profile profile) {
    calls.push_back("make pad " + std::to_string(static_cast<int>(profile)));
    if (!padState.empty()) wrong.emplace_back("the old pad went while it showed something");
    padState.clear();
    pad = padCanBeMade ? profile : input::Profile::none;
    return pad == profile;
}

void FakeDevices::emit(std::span<const Event> events) {
    calls.push_back("pad " + text(events));
    if (pad == input::Profile::none) wrong.emplace_back("shown without a pad");
    for (const Event event : events) {
        const auto buttons = padButtons(pad);
        const auto axes = padAxes(pad);
        const bool declared = event.type == EV_KEY ? std::ranges::count(buttons, event.code) == 1
                                                   : std::ranges::count(axes, event.code, &PadAxis::code) == 1;
        if (!declared) wrong.push_back("shown what the pad does not have: " + text({&event, 1}));
        if (event.value == 0)
            padState.erase({event.type, event.code});
        else
            padState[{event.type, event.code}] = event.value;
    }
}

std::string FakeDevices::padShows() const {
    std::vector<Event> events;
    for (const auto& [place, value] : padState)
        events.push_back({static_cast<std::uint16_t>(place.first), static_cast<std::uint16_t>(place.second), value});
    return text(events);
}

} // namespace jvninputd::fakes
