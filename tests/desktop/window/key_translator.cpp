#include "desktop/window/KeyTranslator.h"

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

std::string typed(const std::string& characters, unsigned modifiers = 0) {
    return seat::typedText(characters, modifiers);
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

TEST(TypedText, CharactersAreText) {
    EXPECT_EQ("a", typed("a"));
    EXPECT_EQ("é", typed("é"));
    EXPECT_EQ(" ", typed(" "));
    EXPECT_EQ("", typed(""));
}

TEST(TypedText, ControlCharactersAreNot) {
    for (const char* key : {"\r", "\t", "\b", "\x1b", "\x7f"}) EXPECT_EQ("", typed(key));
}

TEST(TypedText, WithControlItIsTheLetterItself) {
    EXPECT_EQ("a", typed("\x01", UIKeyEvent::Control));
    EXPECT_EQ("v", typed("\x16", UIKeyEvent::Control));
    EXPECT_EQ("", typed("\x01"));
}

TEST(KeyTranslator, PressSaysWhatItTypes) {
    seat::KeyTranslator translator;
    const auto key = translator.translate({scanCodeOfA, true, false, 0, "q"});
    ASSERT_TRUE(key);
    EXPECT_EQ("q", key->characters());
}

} // namespace
