#include "services/jvninputd/Keymap.h"

#include "tests/jvninputd/PlayerWorld.h"

#include <gtest/gtest.h>

using namespace jvninputd;
using jvninputd::fakes::keymapOf;

namespace {

TEST(Keymap, AKeyDrivesTheInputOfItsUsage) {
    const Keymap keymap = keymapOf(jvninputd::fakes::defaultBindings);

    EXPECT_EQ(keymap.inputOf(KEY_W), native::dpadUp);
    EXPECT_EQ(keymap.inputOf(KEY_ESC), native::pause);
    EXPECT_EQ(keymap.inputOf(KEY_Q), native::none);
    EXPECT_EQ(keymap.leftOut(), 0U);
    EXPECT_FALSE(keymap.needsExtended());
}

TEST(Keymap, AllKeysOfAUsageDriveItsInput) {
    const Keymap keymap = keymapOf({{118, 5}});

    EXPECT_EQ(keymap.inputOf(KEY_MENU), native::a);
    EXPECT_EQ(keymap.inputOf(KEY_PROPS), native::a);
}

TEST(Keymap, TheLastBindingOfAUsageCounts) { EXPECT_EQ(keymapOf({{26, 1}, {26, 3}}).inputOf(KEY_W), native::dpadUp); }

TEST(Keymap, WhatIsNoKeyOrNoInputIsLeftOutAndTheRestCounts) {
    const Keymap keymap = keymapOf({{0, 1}, {256, 1}, {65535, 1}, {4, 0}, {5, 22}, {6, 65535}, {26, 3}});

    EXPECT_EQ(keymap.leftOut(), 6U);
    EXPECT_EQ(keymap.inputOf(KEY_W), native::dpadUp);
    EXPECT_EQ(keymap.inputOf(KEY_A), native::none);
    EXPECT_EQ(keymap.inputOf(KEY_RESERVED), native::none);
}

TEST(Keymap, SticksAndTriggersNeedTheExtendedProfile) {
    for (int code = 1; code <= 21; ++code)
        EXPECT_EQ(keymapOf({{4, code}}).needsExtended(), code >= 11 && code <= 20) << code;
}

TEST(Keymap, AnInputBoundToNoKeyOfTheTableNeedsNoProfile) {
    EXPECT_FALSE(keymapOf({{200, 11}}).needsExtended()); // no key has usage 200
}

TEST(Keymap, NumbersBeyondTheKernelsKeysAreNotMapped) {
    EXPECT_EQ(keymapOf({{26, 3}}).inputOf(KEY_CNT), native::none);
    EXPECT_EQ(keymapOf({{26, 3}}).inputOf(70000), native::none);
}

} // namespace
