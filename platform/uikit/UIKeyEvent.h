#pragma once

#include "platform/runtime/NSObject.h"

#include <string>

// A key of the hardware keyboard going down or up.
class UIKeyEvent final : public NSObject {
    NS_CLASS(UIKeyEvent)

    static std::shared_ptr<UIKeyEvent> keyEvent(long keyCode, bool isKeyDown, bool isRepeat = false,
                                                unsigned modifiers = 0, std::string characters = {});
    enum Modifiers : unsigned { Shift = 1, Control = 2, Alt = 4, GUI = 8 };

    // USB HID usage on the Keyboard/Keypad page.
    long _keyCode() const { return m_keyCode; }
    bool isKeyDown() const { return m_isKeyDown; }
    bool isRepeat() const { return m_isRepeat; }
    unsigned modifiers() const { return m_modifiers; }
    // What the key types in the user's layout, UTF-8; with Control the letter by itself. Empty for keys that type
    // nothing.
    const std::string& characters() const { return m_characters; }

private:
    long m_keyCode = 0;
    bool m_isKeyDown = true;
    bool m_isRepeat = false;
    unsigned m_modifiers = 0;
    std::string m_characters;
};
