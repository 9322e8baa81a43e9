// A controller's light by the whole road: the user's settings, the user's daemon, the service that touches devices, the
// driver in the kernel, the report that the controller gets.

#include "daemonlink/JVNControlFrame.h"
#include "daemonlink/JVNControllerType.h"
#include "tests/machine/support/LitController.h"
#include "tests/machine/support/LoginSession.h"
#include "tests/machine/support/Program.h"

#include <csignal>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace machine {
namespace {

constexpr const char* kStored = "A0:AB:51:00:00:01";
constexpr const char* kOther = "A0:AB:51:00:00:09";
constexpr Light kGreen{0x10, 0xE0, 0x30};
constexpr Light kRed{0xD0, 0x20, 0x10};
constexpr Light kBlue{0x10, 0x20, 0xE0}; // not the driver's own

class Lights : public testing::Test {
protected:
    static void SetUpTestSuite() { session = std::make_unique<LoginSession>(kAnna); }
    static void TearDownTestSuite() { session.reset(); }

    Lights() {
        std::filesystem::remove_all(root);
        std::filesystem::create_directories(root + "/var/mobile/Library/Preferences");
        own(root);
    }
    void own(const std::string& folder) const { run({"chown", "-R", "anna:anna", folder}); }

    // As the page does: a new file in the old one's place.
    enum class Ambient { Off, On };
    void choose(const char* colour, Ambient ambient = Ambient::Off) const {
        const auto file = root + "/var/mobile/Library/Preferences/com.quorrel.joyvane.plist";
        std::ofstream(file + ".new") << "<plist version=\"1.0\"><dict>"
                                     << "<key>controller_type</key><integer>" << JVNControllerTypeDualShock4
                                     << "</integer><key>JVNLEDColorKey</key><string>" << colour << "</string>"
                                     << "<key>JVNAmbientColorKey</key>"
                                     << (ambient == Ambient::On ? "<true/>" : "<false/>")
                                     << "<key>PS4BluetoothAddress</key><data>oKtRAAAB</data></dict></plist>";
        own(file + ".new");
        std::filesystem::rename(file + ".new", file);
    }
    void start() {
        devices = std::make_unique<Program>(std::vector<std::string>{JVNINPUTD_PROGRAM});
        ASSERT_TRUE(waitUntil([] { return std::filesystem::exists("/run/jvninputd.socket"); })) << devices->output();
        daemon = std::make_unique<Program>(std::vector<std::string>{JVND_PROGRAM, "--root", root, "--trace"}, kAnna);
        ASSERT_TRUE(waitUntil([&] { return std::filesystem::exists(controlSocket); })) << daemon->output();
    }
    // As the page does; returns when the daemon has taken it, for it answers what comes after it in the connection.
    void pick(const Light& light) const {
        JVNControlFrame frame;
        frame.command = JVNControlCommand::SetLEDColor;
        frame.controllerType = JVNControllerTypeDualShock4;
        frame.payload[0] = light.red;
        frame.payload[1] = light.green;
        frame.payload[2] = light.blue;
        JVNControlFrame question;
        question.command = JVNControlCommand::QueryConnection;
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        controlSocket.copy(address.sun_path, sizeof address.sun_path - 1);
        const int connection = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        const timeval limit{.tv_sec = 60, .tv_usec = 0};
        ::setsockopt(connection, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
        ASSERT_EQ(::connect(connection, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
        EXPECT_EQ(::send(connection, &frame, JVNControlFrame::colorSize, MSG_NOSIGNAL), 16);
        EXPECT_EQ(::send(connection, &question, JVNControlFrame::baseSize, MSG_NOSIGNAL), 12);
        char reply[JVNControlFrame::baseSize];
        EXPECT_GE(::recv(connection, reply, sizeof reply, 0), 0); // not connected: closed without one
        ::close(connection);
    }
    std::string said() const { return daemon->output() + devices->output(); }

    static std::unique_ptr<LoginSession> session;
    const std::string root = "/people/anna/joyvane";
    const std::string controlSocket = root + "/Library/Caches/jvncontrol.sock";
    std::unique_ptr<Program> devices;
    std::unique_ptr<Program> daemon;
};

std::unique_ptr<LoginSession> Lights::session;

TEST_F(Lights, TheStoredColourComesWithTheControllerAndEachTimeItComesBack) {
    choose("10e030");
    start();
    {
        const DualShock4 controller(Wire::Bluetooth, kStored);
        EXPECT_TRUE(controller.waitForLight(kGreen)) << said();
    }

    const DualShock4 again(Wire::Bluetooth, kStored);

    EXPECT_TRUE(again.waitForLight(kGreen)) << said();
}

TEST_F(Lights, TheLaterControllersOneLightOfAllColoursIsSetToo) {
    choose("10e030");
    start();

    const DualSense controller(Wire::Bluetooth, kStored);

    EXPECT_TRUE(controller.waitForLight(kGreen)) << said();
}

TEST_F(Lights, AColourThatThePagePicksIsShownAndOneThatItStoresToo) {
    choose("10e030");
    start();
    const DualShock4 controller(Wire::Bluetooth, kStored);
    ASSERT_TRUE(controller.waitForLight(kGreen)) << said();

    pick(kRed);
    EXPECT_TRUE(controller.waitForLight(kRed)) << said();
    choose("1020e0");
    EXPECT_TRUE(controller.waitForLight(kBlue)) << said();
}

TEST_F(Lights, OfTwoControllersTheStoredOneIsLit) {
    choose("10e030");
    start();
    const DualShock4 other(Wire::Bluetooth, kOther);
    const DualShock4 stored(Wire::Bluetooth, kStored);

    EXPECT_TRUE(stored.waitForLight(kGreen)) << said();
    pick(kRed);
    EXPECT_TRUE(stored.waitForLight(kRed)) << said();

    EXPECT_NE(other.light(), kGreen);
    EXPECT_NE(other.light(), kRed);
}

TEST_F(Lights, WithAmbientOnTheLightIsTheGamesUntilItIsOff) {
    choose("10e030", Ambient::On);
    start();
    const DualShock4 controller(Wire::Bluetooth, kStored);
    ASSERT_TRUE(waitUntil([&] { return controller.light().has_value(); })); // the driver's own
    pick(kRed);

    choose("1020e0", Ambient::Off);

    EXPECT_TRUE(controller.waitForLight(kBlue)) << said();
    EXPECT_FALSE(controller.waitForLight(kRed, 0, std::chrono::milliseconds(0))) << said();
}

} // namespace
} // namespace machine
