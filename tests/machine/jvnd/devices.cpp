// From the preferences file and the page's frames to a controller's light and a game's pad: jvnd as a user who is
// logged in, jvninputd, the kernel's own drivers.

#include "tests/machine/jvnd/ControlClient.h"
#include "tests/machine/support/LitController.h"
#include "tests/machine/support/LoginSession.h"
#include "tests/machine/support/Program.h"
#include "tests/machine/support/VirtualKeyboard.h"
#include "tests/machine/support/device_nodes.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <optional>
#include <unistd.h>

namespace machine {
namespace {

namespace fs = std::filesystem;

constexpr const char* padName = "Joyvane Gamepad";
constexpr const char* firstController = "A0:AB:51:00:00:01";

// The same bytes as base64, as a property list has them.
std::string base64OfAddress(char last) { return last == '1' ? "oKtRAAAB" : "oKtRAAAC"; }

// A folder that both root and anna use.
class Folder {
public:
    Folder() {
        char pattern[] = "/tmp/jvnd-XXXXXX";
        m_path = ::mkdtemp(pattern);
        fs::permissions(m_path, fs::perms::all);
    }
    ~Folder() {
        std::error_code ignored;
        fs::remove_all(m_path, ignored);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    std::string file(const std::string& name) const { return m_path + "/" + name; }

private:
    std::string m_path;
};

class JvndDevices : public ::testing::Test {
protected:
    JvndDevices() {
        LoginSession::ofAnna();
        EXPECT_TRUE(waitUntil([this] { return fs::exists(m_folder.file("input")); })) << m_inputd.output();
    }

    void start() {
        m_jvnd.emplace(std::vector<std::string>{JVND_PROGRAM, "--root", root(), "--trace", "--input-socket",
                                                m_folder.file("input")},
                       kAnna);
        ASSERT_TRUE(m_jvnd->waitForOutput("ready")) << m_jvnd->output();
    }
    std::string root() const { return m_folder.file("root"); }
    // As the page does it: a file beside it takes its place. `keys` as XML.
    void store(int type, const std::string& keys = {}) const {
        const fs::path file = root() + "/var/mobile/Library/Preferences/com.quorrel.joyvane.plist";
        for (fs::path folder = file.parent_path(); !fs::exists(folder);) {
            fs::create_directories(folder);
            for (auto part = folder; part != fs::path(root()).parent_path(); part = part.parent_path())
                EXPECT_EQ(::chown(part.c_str(), kAnna, kAnna), 0);
        }
        std::ofstream(file.string() + ".new") << "<plist version=\"1.0\"><dict><key>controller_type</key><integer>"
                                              << type << "</integer>" << keys << "</dict></plist>";
        EXPECT_EQ(::chown((file.string() + ".new").c_str(), kAnna, kAnna), 0);
        fs::rename(file.string() + ".new", file);
    }
    static std::string address(char last = '1') {
        return "<key>PS4BluetoothAddress</key><data>" + base64OfAddress(last) + "</data>";
    }
    static std::string color(const std::string& digits) {
        return "<key>JVNLEDColorKey</key><string>" + digits + "</string>";
    }
    std::string said() { return m_jvnd->output() + m_inputd.output(); }

    Folder m_folder;
    Program m_inputd{{JVNINPUTD_PROGRAM, "--socket", m_folder.file("input")}};
    std::optional<Program> m_jvnd;
    ControlClient m_page{root() + "/Library/Caches/jvncontrol.sock"};
};

TEST_F(JvndDevices, TheStoredColourIsShownWhenTheControllerArrivesAndWhenItComesBack) {
    store(1, address() + color("0a141e"));
    start();
    {
        DualShock4 controller(Wire::Bluetooth, firstController);
        EXPECT_TRUE(controller.waitForLight({10, 20, 30})) << said();
    }
    EXPECT_TRUE(waitForNoEventNode("Wireless Controller"));
    DualShock4 again(Wire::Bluetooth, firstController);
    EXPECT_TRUE(again.waitForLight({10, 20, 30})) << said();
}

TEST_F(JvndDevices, AColourThatIsPickedAndOneThatIsStoredAreShownAtOnce) {
    store(1, address() + color("0a141e"));
    start();
    DualShock4 controller(Wire::Bluetooth, firstController);
    ASSERT_TRUE(controller.waitForLight({10, 20, 30})) << said();

    ASSERT_TRUE(m_page.tell(JVNControlCommand::SetLEDColor, 1, {200, 100, 50}));
    EXPECT_TRUE(controller.waitForLight({200, 100, 50})) << said();

    store(1, address() + color("ff0080"));
    EXPECT_TRUE(controller.waitForLight({255, 0, 128})) << said();
}

TEST_F(JvndDevices, TheLaterControllersOneLightShowsItToo) {
    store(1, address('2') + color("0a141e"));
    start();
    DualSense controller(Wire::Bluetooth, "A0:AB:51:00:00:02");
    EXPECT_TRUE(controller.waitForLight({10, 20, 30})) << said();
}

TEST_F(JvndDevices, AControllerOnACableIsLitThoughItWasNeverPaired) {
    store(1, color("0a141e"));
    start();
    DualShock4 controller(Wire::Usb, firstController);
    EXPECT_TRUE(controller.waitForLight({10, 20, 30})) << said();

    ASSERT_TRUE(m_page.tell(JVNControlCommand::SetLEDColor, 1, {200, 100, 50}));
    EXPECT_TRUE(controller.waitForLight({200, 100, 50})) << said();
}

TEST_F(JvndDevices, WithAmbientLightTheColourIsTheGames) {
    store(1, address() + color("0a141e") + "<key>JVNAmbientColorKey</key><true/>");
    start();
    DualShock4 controller(Wire::Bluetooth, firstController);
    ASSERT_FALSE(waitForEventNode(controller.name()).empty());
    ASSERT_TRUE(m_page.tell(JVNControlCommand::SetLEDColor, 1, {200, 100, 50}));

    // What was not shown meanwhile is not shown later: the next colour is the first.
    store(1, address() + color("010203"));
    EXPECT_TRUE(controller.waitForLight({1, 2, 3})) << said();
    for (const Light& never : {Light{10, 20, 30}, Light{200, 100, 50}})
        EXPECT_FALSE(controller.waitForLight(never, 0, std::chrono::milliseconds(0))) << said();
}

TEST_F(JvndDevices, OfTwoControllersTheStoredOneIsLit) {
    store(1, address('2') + color("0a141e"));
    start();
    DualShock4 other(Wire::Bluetooth, firstController);
    DualShock4 stored(Wire::Bluetooth, "A0:AB:51:00:00:02");
    EXPECT_TRUE(stored.waitForLight({10, 20, 30})) << said();
    ASSERT_TRUE(m_page.tell(JVNControlCommand::SetLEDColor, 1, {200, 100, 50}));
    EXPECT_TRUE(stored.waitForLight({200, 100, 50})) << said();

    for (const Light& never : {Light{10, 20, 30}, Light{200, 100, 50}})
        EXPECT_FALSE(other.waitForLight(never, 0, std::chrono::milliseconds(0))) << said();
}

TEST_F(JvndDevices, TheKeyboardIsAPadAsLongAsItIsChosenAndTheDaemonLives) {
    store(6);
    const VirtualKeyboard keyboard;
    start();
    ASSERT_FALSE(waitForEventNode(padName).empty()) << said();

    store(1, address());
    EXPECT_TRUE(waitForNoEventNode(padName)) << said();
    store(6);
    ASSERT_FALSE(waitForEventNode(padName).empty()) << said();

    m_jvnd->signal(SIGKILL);
    EXPECT_TRUE(waitForNoEventNode(padName)) << said();
    start();
    EXPECT_FALSE(waitForEventNode(padName).empty()) << said();
}

TEST_F(JvndDevices, TheProgramThatTouchesDevicesMayCrashAndIsToldEverythingAnew) {
    store(6);
    const VirtualKeyboard keyboard;
    start();
    ASSERT_FALSE(waitForEventNode(padName).empty()) << said();
    m_inputd.signal(SIGKILL);
    EXPECT_TRUE(waitForNoEventNode(padName)) << said();
    fs::remove(m_folder.file("input"));

    const Program again({JVNINPUTD_PROGRAM, "--socket", m_folder.file("input")});

    EXPECT_FALSE(waitForEventNode(padName).empty()) << said();
}

} // namespace
} // namespace machine
