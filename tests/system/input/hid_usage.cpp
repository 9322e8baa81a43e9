#include "system/input/hid_usage.h"

#include <gtest/gtest.h>
#include <linux/input-event-codes.h>
#include <map>
#include <set>

namespace {

using seat::hidUsageForKernelKey;
using seat::hidUsageForScanCode;

TEST(HIDUsage, KeysThatTheKeyNamesKnow) {
    const std::map<unsigned, long> known = {
        {KEY_LEFTCTRL, 224},   {KEY_LEFTSHIFT, 225}, {KEY_RIGHT, 79},      {KEY_LEFT, 80},  {KEY_DOWN, 81},
        {KEY_UP, 82},          {KEY_LEFTALT, 226},   {KEY_LEFTMETA, 227},  {KEY_SPACE, 44}, {KEY_ENTER, 40},
        {KEY_RIGHTSHIFT, 229}, {KEY_BACKSPACE, 42},  {KEY_CAPSLOCK, 57},   {KEY_TAB, 43},   {KEY_ESC, 41},
        {KEY_RIGHTCTRL, 228},  {KEY_RIGHTALT, 230},  {KEY_RIGHTMETA, 231}, {KEY_0, 39},     {KEY_1, 30},
        {KEY_9, 38},           {KEY_A, 4},           {KEY_Z, 29},          {KEY_W, 26},     {KEY_D, 7}};
    for (const auto& [key, usage] : known) EXPECT_EQ(usage, hidUsageForKernelKey(key)) << key;
}

TEST(HIDUsage, RowsOfTheKeyboardAreInTheOrderOfTheUsagePage) {
    const auto run = [](std::initializer_list<unsigned> keys, long first) {
        for (const unsigned key : keys) EXPECT_EQ(first++, hidUsageForKernelKey(key)) << key;
    };
    run({KEY_A, KEY_B, KEY_C, KEY_D, KEY_E, KEY_F, KEY_G, KEY_H, KEY_I, KEY_J, KEY_K, KEY_L, KEY_M,
         KEY_N, KEY_O, KEY_P, KEY_Q, KEY_R, KEY_S, KEY_T, KEY_U, KEY_V, KEY_W, KEY_X, KEY_Y, KEY_Z},
        4);
    run({KEY_1,     KEY_2,     KEY_3,     KEY_4,         KEY_5,          KEY_6,         KEY_7,
         KEY_8,     KEY_9,     KEY_0,     KEY_ENTER,     KEY_ESC,        KEY_BACKSPACE, KEY_TAB,
         KEY_SPACE, KEY_MINUS, KEY_EQUAL, KEY_LEFTBRACE, KEY_RIGHTBRACE, KEY_BACKSLASH},
        30);
    run({KEY_SEMICOLON, KEY_APOSTROPHE, KEY_GRAVE,   KEY_COMMA,   KEY_DOT,     KEY_SLASH,   KEY_CAPSLOCK,
         KEY_F1,        KEY_F2,         KEY_F3,      KEY_F4,      KEY_F5,      KEY_F6,      KEY_F7,
         KEY_F8,        KEY_F9,         KEY_F10,     KEY_F11,     KEY_F12,     KEY_SYSRQ,   KEY_SCROLLLOCK,
         KEY_PAUSE,     KEY_INSERT,     KEY_HOME,    KEY_PAGEUP,  KEY_DELETE,  KEY_END,     KEY_PAGEDOWN,
         KEY_RIGHT,     KEY_LEFT,       KEY_DOWN,    KEY_UP,      KEY_NUMLOCK, KEY_KPSLASH, KEY_KPASTERISK,
         KEY_KPMINUS,   KEY_KPPLUS,     KEY_KPENTER, KEY_KP1,     KEY_KP2,     KEY_KP3,     KEY_KP4,
         KEY_KP5,       KEY_KP6,        KEY_KP7,     KEY_KP8,     KEY_KP9,     KEY_KP0,     KEY_KPDOT,
         KEY_102ND,     KEY_COMPOSE,    KEY_POWER,   KEY_KPEQUAL, KEY_F13,     KEY_F14,     KEY_F15,
         KEY_F16,       KEY_F17,        KEY_F18,     KEY_F19,     KEY_F20,     KEY_F21,     KEY_F22,
         KEY_F23,       KEY_F24,        KEY_OPEN,    KEY_HELP,    KEY_PROPS,   KEY_FRONT,   KEY_STOP,
         KEY_AGAIN,     KEY_UNDO,       KEY_CUT,     KEY_COPY,    KEY_PASTE,   KEY_FIND,    KEY_MUTE,
         KEY_VOLUMEUP,  KEY_VOLUMEDOWN},
        51);
    run({KEY_RO, KEY_KATAKANAHIRAGANA, KEY_YEN, KEY_HENKAN, KEY_MUHENKAN, KEY_KPJPCOMMA}, 135);
    run({KEY_HANGEUL, KEY_HANJA, KEY_KATAKANA, KEY_HIRAGANA, KEY_ZENKAKUHANKAKU}, 144);
    run({KEY_KPLEFTPAREN, KEY_KPRIGHTPAREN}, 182);
    run({KEY_LEFTCTRL, KEY_LEFTSHIFT, KEY_LEFTALT, KEY_LEFTMETA, KEY_RIGHTCTRL, KEY_RIGHTSHIFT, KEY_RIGHTALT,
         KEY_RIGHTMETA},
        224);
}

TEST(HIDUsage, KeysOfOtherPagesHaveNone) {
    for (const unsigned key :
         {unsigned{KEY_RESERVED}, unsigned{KEY_PLAYPAUSE}, unsigned{KEY_NEXTSONG}, unsigned{KEY_WWW},
          unsigned{KEY_BRIGHTNESSUP}, unsigned{KEY_MICMUTE}, 256u, 100000u, ~0u})
        EXPECT_EQ(0, hidUsageForKernelKey(key)) << key;
}

TEST(HIDUsage, NoTwoKeysButTheTwoMenuKeysShareAUsage) {
    std::set<long> seen;
    for (unsigned key = 0; key < 256; ++key)
        if (const long usage = hidUsageForKernelKey(key); usage != 0 && key != KEY_MENU)
            EXPECT_TRUE(seen.insert(usage).second) << key;
}

TEST(HIDUsage, ScanCodesAreEightAboveTheKernelsNumbers) {
    EXPECT_EQ(4, hidUsageForScanCode(38)); // the key labelled A in most layouts, whatever it types
    for (unsigned key = 0; key < 256; ++key) EXPECT_EQ(hidUsageForKernelKey(key), hidUsageForScanCode(key + 8));
    for (unsigned code = 0; code <= 8; ++code) EXPECT_EQ(0, hidUsageForScanCode(code)) << code;
}

} // namespace
