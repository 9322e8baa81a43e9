#pragma once

#include "services/jvninputd/Devices.h"

#include <map>
#include <set>
#include <string>
#include <vector>

namespace jvninputd::fakes {

// Keyboards, a pad and a desktop as the kernel would have them, without one: who has which keyboard, what the pad shows
// and what the desktop sees held. Says in `wrong` what may never happen.
class FakeDevices final : public Devices {
public:
    struct Keyboard {
        KeySet down; // under somebody's fingers
        bool open = false;
        bool taken = false;
        bool otherHasIt = false;    // another program has taken it
        std::set<unsigned> standIn; // held on the keyboard that stands in for it
    };

    KeySet open(KeyboardId id) override;
    void close(KeyboardId id) override;
    Taken take(KeyboardId id, KeySet& keysDown) override;
    void giveBack(KeyboardId id) override;
    void forward(KeyboardId id, std::span<const Event> events) override;
    bool makePad(input::Profile profile) override;
    void emit(std::span<const Event> events) override;

    // The pad's axes and buttons that are not at rest, as in "1:304=1 3:17=-1".
    std::string padShows() const;

    std::map<KeyboardId, Keyboard> keyboards;
    input::Profile pad = input::Profile::none;
    bool padCanBeMade = true;
    std::map<std::pair<unsigned, unsigned>, int> padState; // by type and code, what is not 0
    std::vector<std::string> calls;                        // as in "take 1", "pad 3:17=-1", "desktop 1 1:30=1"
    std::vector<std::string> wrong;
};

std::string text(std::span<const Event> events);

} // namespace jvninputd::fakes
