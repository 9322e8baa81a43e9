#include "desktop/window/KeyTranslator.h"

#include "kit/uikit/hid_keys.h"
#include "platform/uikit/UIKeyEvent.h"

#include <gtest/gtest.h>

namespace {

namespace hid = seat::hid;

constexpr unsigned scanCodeOfEscape = 9;
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
    seat::KeyTranslator translator;

private:
    std::string event(const seat::RawKeyEvent& raw) { return say(translator.translate(raw)); }
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

TEST(KeyTranslator, WhatAKeyMeansIsSaidBesideItsPlace) {
    seat::KeyTranslator translator;

    const auto key = translator.translate({scanCodeOfA, true, false, 0, hid::escape});
    ASSERT_TRUE(key);
    EXPECT_EQ(4, key->_keyCode());
    EXPECT_EQ(hid::escape, key->symbol());

    const auto letter = translator.translate({scanCodeOfEscape, true, false, 0, 0});
    ASSERT_TRUE(letter);
    EXPECT_EQ(hid::escape, letter->_keyCode());
    EXPECT_EQ(0, letter->symbol());
}

TEST(KeyTranslator, AKeyThatNavigatesIsHeardFromNoPlaceToo) {
    seat::KeyTranslator translator;

    const auto down = translator.translate({0, true, false, 0, hid::tab});
    ASSERT_TRUE(down);
    EXPECT_EQ(0, down->_keyCode());
    EXPECT_EQ(hid::tab, down->symbol());
    EXPECT_TRUE(translator.translate({0, false, false, 0, hid::tab}));
}

} // namespace
