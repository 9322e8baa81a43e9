#pragma once

#include "services/jvninputd/pad_events.h"

#include <linux/input-event-codes.h>

#include <bitset>
#include <cstdint>
#include <span>

namespace jvninputd {

// A keyboard for as long as it is plugged in; never used again for another one.
using KeyboardId = std::uint32_t;

// Keys by the kernel's numbers.
using KeySet = std::bitset<KEY_CNT>;

// What a Player does to devices. Nothing here calls back into the Player.
class Devices {
public:
    virtual ~Devices() = default;

    // Reads the keyboard's events from now on, without taking them from anybody. Gives back the keys that are down.
    virtual KeySet open(KeyboardId keyboard) = 0;
    virtual void close(KeyboardId keyboard) = 0;

    enum class Taken { yes, no };
    // Takes the keyboard's events from everybody else, if none of its keys is down. If one is, the keyboard is as it
    // was, and keysDown says which keys are; it is empty when another program has taken the keyboard.
    virtual Taken take(KeyboardId keyboard, KeySet& keysDown) = 0;
    virtual void giveBack(KeyboardId keyboard) = 0;

    // Events for the desktop, through the keyboard that stands in for a taken one. They are a whole frame but for its
    // end.
    virtual void forward(KeyboardId keyboard, std::span<const Event> events) = 0;

    // The pad appears in this profile, at rest, or goes (none). False when it could not be made.
    virtual bool makePad(input::Profile profile) = 0;
    // A whole frame but for its end.
    virtual void emit(std::span<const Event> events) = 0;
};

} // namespace jvninputd
