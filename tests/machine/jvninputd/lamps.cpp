#include "tests/machine/jvninputd/PlayingTest.h"

#include <unistd.h>

namespace machine {
namespace {

// The keyboard's lamps, and those of the one that stands in for it on the desktop.
class Lamps : public PlayingTest {
protected:
    Lamps() : PlayingTest(DeviceDescription::withLamps()) {}
    void SetUp() override {
        startGame();
        wholeKeyboard.emplace(keyboard.node());
    }
    // As a desktop does it, which has the node open.
    static void light(const EventReader& device, std::uint16_t lamp, int value) {
        input_event frame[2]{};
        frame[0].type = EV_LED;
        frame[0].code = lamp;
        frame[0].value = value;
        frame[1].type = EV_SYN;
        ASSERT_EQ(::write(device.descriptor(), frame, sizeof frame), static_cast<ssize_t>(sizeof frame));
    }
    static bool shows(const EventReader& device, std::uint16_t lamp, bool lit) {
        return waitUntil([&] { return device.isLit(lamp) == lit; });
    }

    std::optional<EventReader> wholeKeyboard;
};

TEST_F(Lamps, WhatTheDesktopLightsShowsOnTheKeyboardThatIsTaken) {
    light(*desktop, LED_CAPSL, 1);
    EXPECT_TRUE(shows(*wholeKeyboard, LED_CAPSL, true));
    light(*desktop, LED_CAPSL, 0);
    EXPECT_TRUE(shows(*wholeKeyboard, LED_CAPSL, false));
}

TEST_F(Lamps, WhatAProgramLightsOnTheKeyboardShowsOnTheDesktop) {
    light(*wholeKeyboard, LED_NUML, 1);
    EXPECT_EQ(desktop->nextText(), "EV_LED 0 1") << "those who listen to it are told";
    light(*wholeKeyboard, LED_NUML, 0);
    EXPECT_EQ(desktop->nextText(), "EV_LED 0 0");
    EXPECT_FALSE(desktop->isLit(LED_NUML));
    EXPECT_FALSE(wholeKeyboard->isLit(LED_NUML));
}

TEST_F(Lamps, BothLitInTurnsEndAlike) {
    for (int round = 0; round < 50; ++round) {
        light(*desktop, LED_CAPSL, round % 2);
        light(*wholeKeyboard, LED_CAPSL, round % 3 == 0);
        light(*desktop, LED_SCROLLL, round % 3 == 0);
        if (round % 4 == 3) settle(service.socket()); // the kernel keeps sixteen for it
    }
    light(*desktop, LED_SCROLLL, 1);
    EXPECT_TRUE(shows(*wholeKeyboard, LED_SCROLLL, true));
    EXPECT_TRUE(waitUntil([this] {
        settle(service.socket());
        return desktop->isLit(LED_CAPSL) == wholeKeyboard->isLit(LED_CAPSL);
    }));
    keyboard.tap(KEY_W);
    EXPECT_TRUE(game->waitFor(EV_ABS, ABS_HAT0Y, -1)) << "it still plays";
}

// Far more than the kernel keeps for whoever made the device.
TEST_F(Lamps, WhatWasLitWhileNobodyFollowedIsMadeUpForWhenItIsTaken) {
    game.reset();
    ASSERT_TRUE(governor.waitFor(input::Readiness::waitingForGame));
    for (int i = 0; i < 33; ++i) light(*desktop, LED_CAPSL, i % 2);
    light(*wholeKeyboard, LED_CAPSL, 1);
    game.emplace(EventReader::ofDevice(padName));
    ASSERT_TRUE(governor.waitFor(input::Readiness::playing));

    EXPECT_TRUE(shows(*desktop, LED_CAPSL, true)) << "the keyboard's own count";
    light(*desktop, LED_CAPSL, 0);
    EXPECT_TRUE(shows(*wholeKeyboard, LED_CAPSL, false));
}

} // namespace
} // namespace machine
