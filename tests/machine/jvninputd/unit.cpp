#include "tests/machine/jvninputd/InputClient.h"
#include "tests/machine/jvninputd/PlayingTest.h"
#include "tests/machine/support/LitController.h"
#include "tests/machine/support/Program.h"

#include <csignal>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace machine {
namespace {

// Making the sandbox takes the service manager seconds under emulation.
constexpr auto kStartTimeout = 3 * kLongTimeout;

std::string contents(const std::string& path) {
    std::ifstream file(path);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

// The units as they are installed, in the system's own service manager: the sandbox is the real one.
class Unit : public ::testing::Test {
protected:
    void SetUp() override {
        std::string unit = contents(JOYVANE_UNITS "/jvninputd.service.in");
        const std::string place = "@JOYVANE_PROGRAMS@/jvninputd";
        // A unit that sees neither homes nor temporary folders may not see where the program was built.
        const std::string program = "/run/joyvane-programs/jvninputd";
        std::filesystem::create_directories(std::filesystem::path(program).parent_path());
        std::filesystem::copy_file(JVNINPUTD_PROGRAM, program, std::filesystem::copy_options::overwrite_existing);
        unit.replace(unit.find(place), place.size(), program);
        std::ofstream("/run/systemd/system/jvninputd.service") << unit;
        std::ofstream("/run/systemd/system/jvninputd.socket") << contents(JOYVANE_UNITS "/jvninputd.socket");
        ASSERT_EQ(run({"systemctl", "daemon-reload"}, kRoot, kStartTimeout).status, 0);
        ASSERT_EQ(run({"systemctl", "start", "jvninputd.socket"}, kRoot, kStartTimeout).status, 0);
    }
    void TearDown() override { run({"systemctl", "stop", "jvninputd.socket", "jvninputd.service"}); }

    static std::string property(const std::string& name) {
        std::string value = run({"systemctl", "show", "--value", "--property=" + name, "jvninputd.service"}).output;
        while (!value.empty() && value.back() == '\n') value.pop_back();
        return value;
    }
};

TEST_F(Unit, ItsFirstClientStartsItAndInItsSandboxItPlaysAndLights) {
    EXPECT_NE(property("ActiveState"), "active");
    VirtualKeyboard keyboard(DeviceDescription::withLamps());
    DualShock4 controller;
    InputClient governor(input::socketPath, input::Role::govern);
    governor.play(defaultBindings());
    EventReader game = EventReader::ofDevice(padName, kStartTimeout);
    ASSERT_TRUE(governor.waitFor(input::Readiness::playing));
    keyboard.press(KEY_W);
    EXPECT_EQ(game.nextText(), "EV_ABS 17 -1");

    ASSERT_TRUE(governor.waitForController(controller.address(), true));
    governor.light(controller.address(), 1, 2, 3);
    EXPECT_TRUE(controller.waitForLight({1, 2, 3}));
    EXPECT_NE(contents("/proc/" + property("MainPID") + "/status").find("CapEff:\t0000000000000000"),
              std::string::npos);
}

TEST_F(Unit, StoppedWhileItHoldsTheKeyboardItIsEndedAndTheKeyboardIsBack) {
    VirtualKeyboard keyboard;
    InputClient governor(input::socketPath, input::Role::govern);
    governor.play(defaultBindings());
    EventReader game = EventReader::ofDevice(padName, kStartTimeout);
    ASSERT_TRUE(governor.waitFor(input::Readiness::playing));
    EventReader everybody(keyboard.node());
    const pid_t process = std::stoi(property("MainPID"));
    const auto begin = std::chrono::steady_clock::now();
    ASSERT_EQ(::kill(process, SIGSTOP), 0);

    EXPECT_TRUE(waitUntil([&] { return !everybody.grabbedByOthers(); }));
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begin;
    std::printf("back after %.1f s\n", took.count());
    EXPECT_LT(took.count(), 5);
    keyboard.tap(KEY_F9);
    EXPECT_TRUE(everybody.waitFor(EV_KEY, KEY_F9, 0));
    // Somebody who connects again is served.
    InputClient again(input::socketPath, input::Role::govern);
    again.play(defaultBindings());
    EXPECT_TRUE(again.waitFor(input::Readiness::waitingForGame, kStartTimeout));
}

} // namespace
} // namespace machine
