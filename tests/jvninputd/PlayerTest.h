#pragma once

#include "tests/jvninputd/PlayerWorld.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace jvninputd::fakes {

class PlayerTest : public ::testing::Test, protected PlayerWorld {
protected:
    ~PlayerTest() override { EXPECT_THAT(devices.wrong, ::testing::IsEmpty()); }

    void chord() {
        press(KEY_LEFTCTRL);
        press(KEY_RIGHTCTRL);
        press(KEY_ESC);
    }
    void releaseChord() {
        release(KEY_ESC);
        release(KEY_RIGHTCTRL);
        release(KEY_LEFTCTRL);
    }
    void playByHand() {
        plugIn(1);
        player.play(something(keymapOf(defaultBindings), input::PlayMode::byHand), Player::GiveBack::WhenFree, now);
    }
};

} // namespace jvninputd::fakes
