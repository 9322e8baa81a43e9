#pragma once

#include "tests/machine/jvninputd/InputClient.h"
#include "tests/machine/jvninputd/InputService.h"
#include "tests/machine/support/EventReader.h"
#include "tests/machine/support/VirtualKeyboard.h"
#include "tests/machine/support/device_nodes.h"

#include <gtest/gtest.h>
#include <optional>

namespace machine {

inline constexpr const char* padName = "Joyvane Gamepad";
inline constexpr const char* standInName = "Joyvane Keyboard";

// A keyboard, the service, somebody who governs, and when it is wanted a game and a desktop.
class PlayingTest : public ::testing::Test {
protected:
    explicit PlayingTest(const DeviceDescription& description = {}) : keyboard(description) {}

    // Plays these keys, waits for the pad, opens it as a game does and waits until the keyboard is taken.
    void startGame(const Bindings& bindings = defaultBindings()) {
        governor.play(bindings);
        game.emplace(EventReader::ofDevice(padName));
        ASSERT_TRUE(governor.waitFor(input::Readiness::playing)) << service.log();
        desktop.emplace(EventReader::ofDevice(standInName));
    }
    // What reaches the desktop of a key that is not mapped, typed now: nothing else came before it.
    ::testing::AssertionResult nothingOnTheDesktop() {
        keyboard.tap(KEY_F9);
        if (const std::string text = desktop->nextText(); text != "EV_KEY 67 1")
            return ::testing::AssertionFailure() << text;
        if (const std::string text = desktop->nextText(); text != "EV_KEY 67 0")
            return ::testing::AssertionFailure() << text;
        return ::testing::AssertionSuccess();
    }

    InputService service;
    VirtualKeyboard keyboard;
    InputClient governor{service.socket(), input::Role::govern};
    std::optional<EventReader> game;
    std::optional<EventReader> desktop;
};

} // namespace machine
