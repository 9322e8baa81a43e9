#include "host/window/key_translator.h"

#include "platform/uikit/UIKeyEvent.h"

#include <gtest/gtest.h>

namespace {

constexpr unsigned scanCodeOfA = 38;
constexpr unsigned scanCodeOfB = 56;
constexpr unsigned scanCodeOfVolumeUp = 123;

// "26 down", "26 up", "26 again", with the modifiers behind; empty for no event.
std::string say(const std::shared_ptr<UIKeyEvent>& event) {
    if (!event) return {};
    std::string text = std::to_string(event->_keyCode());
    text += event->isRepeat() ? " again" : event->isKeyDown() ? " down" : " up";
    return event->modifiers() ? text + " +" + std::to_string(event->modifiers()) : text;
}

class Keyboard {
public:
    std::string press(unsigned code, unsigned modifiers = 0) { return event({code, true, false, modifiers}); }
    std::string release(unsigned code, unsigned modifiers = 0) { return event({code, false, false, modifiers}); }
    // What a held key looks like each time it repeats.
    std::string repeat(unsigned code) { return event({code, false, true}) + event({code, true, true}); }
    host::KeyTranslator translator;

private:
    std::string event(const host::RawKeyEvent& raw) { return say(translator.translate(raw)); }
};

TEST(KeyTranslator, PressAndReleaseComeAsUsages) {
    Keyboard keyboard;

    EXPECT_EQ("4 down", keyboard.press(scanCodeOfA));
    EXPECT_EQ("4 up", keyboard.release(scanCodeOfA));
    EXPECT_EQ("4 down", keyboard.press(scanCodeOfA));
}

TEST(KeyTranslator, ModifiersTravelWithTheKey) {
    Keyboard keyboard;

    EXPECT_EQ("4 down +3", keyboard.press(scanCodeOfA, UIKeyEvent::Shift | UIKeyEvent::Control));
    EXPECT_EQ("4 up +2", keyboard.release(scanCodeOfA, UIKeyEvent::Control));
}

TEST(KeyTranslator, AHeldKeyRepeatsWithoutReleases) {
    Keyboard keyboard;

    EXPECT_EQ("4 down", keyboard.press(scanCodeOfA));
    EXPECT_EQ("4 again", keyboard.repeat(scanCodeOfA));
    EXPECT_EQ("4 again", keyboard.repeat(scanCodeOfA));
    EXPECT_EQ("4 up", keyboard.release(scanCodeOfA));
}

TEST(KeyTranslator, AHeldKeyMayRepeatByPressesAlone) {
    Keyboard keyboard;

    EXPECT_EQ("4 down", keyboard.press(scanCodeOfA));
    EXPECT_EQ("4 again", keyboard.press(scanCodeOfA));
    EXPECT_EQ("5 down", keyboard.press(scanCodeOfB));
    EXPECT_EQ("4 up", keyboard.release(scanCodeOfA));
    EXPECT_EQ("4 down", keyboard.press(scanCodeOfA));
}

TEST(KeyTranslator, KeysWithoutAUsageAreNotHeard) {
    Keyboard keyboard;

    EXPECT_EQ("", keyboard.press(scanCodeOfVolumeUp + 100));
    EXPECT_EQ("", keyboard.press(8));
    EXPECT_EQ("", keyboard.press(0));
}

TEST(KeyTranslator, AKeyThatWentDownElsewhereIsNotHeardUntilItGoesDownHere) {
    Keyboard keyboard;

    EXPECT_EQ("", keyboard.release(scanCodeOfA));
    EXPECT_EQ("", keyboard.repeat(scanCodeOfA));
    EXPECT_EQ("4 down", keyboard.press(scanCodeOfA));
}

TEST(KeyTranslator, KeysHeldWhenTheKeyboardGoesAreForgotten) {
    Keyboard keyboard;
    keyboard.press(scanCodeOfA);
    keyboard.press(scanCodeOfB);

    keyboard.translator.forgetHeldKeys();

    EXPECT_EQ("", keyboard.release(scanCodeOfA));
    EXPECT_EQ("", keyboard.repeat(scanCodeOfB));
}

} // namespace
