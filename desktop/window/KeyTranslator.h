#pragma once

// From the window system's key events to the phone's.

#include <memory>
#include <set>

class UIKeyEvent;

namespace seat {

struct RawKeyEvent {
    unsigned scanCode = 0; // the window system's: the kernel's number of the key plus 8
    bool isDown = true;
    bool isAutoRepeat = false; // the window system says so
    unsigned modifiers = 0;    // UIKeyEvent's
    long symbol = 0;           // UIKeyEvent's
};

class KeyTranslator {
public:
    // nil for what has neither a place on the usage page nor a symbol that navigates, for keys that went down while
    // another window had the keyboard, and for what no key did: a held key comes as presses alone, or as pairs of
    // release and press that the window system marks; the releases of such pairs are dropped, and the presses are
    // marked as repeats.
    std::shared_ptr<UIKeyEvent> translate(const RawKeyEvent& event);

    // The keyboard is somebody else's now: releases that follow are not ours to hear.
    void forgetHeldKeys() { m_held.clear(); }

private:
    std::set<unsigned> m_held; // scan codes
};

} // namespace seat
