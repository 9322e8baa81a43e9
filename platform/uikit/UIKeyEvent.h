#pragma once

#include "platform/runtime/NSObject.h"

#include <optional>

// A key of the hardware keyboard going down or up. Immutable. A key that is held sends repeats that go down, and one
// that goes up. Which key it was is the user's business: it is never logged.
class UIKeyEvent final : public NSObject {
    NS_CLASS(UIKeyEvent)

    // Without a symbol the key means what its place means. `modifiers` are the ones that are down, as bits.
    static std::shared_ptr<UIKeyEvent> keyEvent(long keyCode, bool isKeyDown, bool isRepeat = false,
                                                unsigned modifiers = 0, std::optional<long> symbol = {});
    enum Modifiers : unsigned { Shift = 1, Control = 2, Alt = 4, GUI = 8 };

    // The key by its place on the keyboard, whatever the layout makes of it: USB HID usage on the Keyboard/Keypad page.
    // 0 for a key that has no place.
    long _keyCode() const { return m_keyCode; }
    // False: it goes up. A repeat is down.
    bool isKeyDown() const { return m_isKeyDown; }
    bool isRepeat() const { return m_isRepeat; }
    unsigned modifiers() const { return m_modifiers; }
    // The key by what the user's layout makes of it: for keys that navigate the usage of the key that does so on a
    // plain keyboard, 0 for all others. The same as the place where none was given.
    long symbol() const { return m_symbol; }

private:
    long m_keyCode = 0;
    bool m_isKeyDown = true;
    bool m_isRepeat = false;
    unsigned m_modifiers = 0;
    long m_symbol = 0;
};
