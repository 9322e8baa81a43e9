// The daemon's own minute: one that the service manager has started leaves again where nobody needs it.

#include "services/jvnd/Daemon.h"

#include "services/jvnd/exit_codes.h"
#include "system/files/Descriptor.h"
#include "system/socket/address.h"
#include "tests/support/BusPeer.h"
#include "tests/support/HeldClock.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/TemporaryFolder.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace jvnd;
using namespace std::chrono_literals;

namespace {

constexpr int exitStays = 99; // none of the daemon's own
const std::string address = "<key>PS4BluetoothAddress</key><data>AKoBAQAB</data>";

class DaemonTest : public ::testing::Test {
protected:
    enum class StartedBy { ServiceManager, Somebody };

    DaemonTest() { ::setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus", /*replace=*/1); }
    ~DaemonTest() override {
        ::unsetenv("SYSTEMD_EXEC_PID");
        ::unsetenv("NOTIFY_SOCKET");
        ::unsetenv("DBUS_SESSION_BUS_ADDRESS");
    }

    // As the page does it: a file beside it takes its place.
    void store(int type, const std::string& more = {}) const {
        const auto file = folder.path() + preferencesFile;
        std::filesystem::create_directories(std::filesystem::path(file).parent_path());
        std::ofstream(file + ".new") << "<plist version=\"1.0\"><dict><key>controller_type</key><integer>" << type
                                     << "</integer>" << more << "</dict></plist>";
        std::filesystem::rename(file + ".new", file);
    }
    void start(StartedBy by = StartedBy::ServiceManager) {
        if (by == StartedBy::ServiceManager) {
            ::setenv("SYSTEMD_EXEC_PID", std::to_string(::getpid()).c_str(), /*replace=*/1);
            ::setenv("NOTIFY_SOCKET", "/nonexistent/notify", /*replace=*/1);
        }
        ASSERT_EQ(place.open(socketPath), "");
        ASSERT_EQ(place.isManaged(), by == StartedBy::ServiceManager);
        daemon.emplace(loop, place,
                       Daemon::Options{.root = folder.path(),
                                       .simulates = true,
                                       .trace = [this](const std::string& line) { said += line + "\n"; }});
    }
    // The code with which it ends while this time passes; exitStays when it does not.
    int codeWithin(std::chrono::seconds time) {
        services::EventLoop::Source stays;
        const auto stop = loop.soon([&] {
            clock.advance(loop, time);
            stays = loop.soon([this] { loop.quit(exitStays); });
        });
        return loop.run();
    }
    seat::Descriptor call() const {
        seat::Descriptor caller(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
        EXPECT_EQ(seat::connectToPath(caller.get(), socketPath), 0);
        return caller;
    }
    // What the page is told of it.
    std::optional<daemon_status::Status> told() const {
        std::ifstream file(folder.path() + daemon_status::filePath);
        return daemon_status::statusOf({std::istreambuf_iterator<char>(file), {}});
    }
    // Posts again until it is heard: nobody says when the bus begins to listen for us.
    bool announces(const testing_support::BusPeer& page, const std::string& interface, const std::string& member) {
        const auto isHeard = [&] { return said.find("heard " + interface + "." + member) != std::string::npos; };
        for (int i = 0; i < 100 && !isHeard(); ++i) {
            page.emitSignal("/page", interface, member);
            page.flush();
            loop.runUntil(isHeard, 100ms);
        }
        return isHeard();
    }
    bool hears(const std::string& text) {
        return loop.runUntil([&] { return said.find(text) != std::string::npos; });
    }

    testing_support::TemporaryFolder folder;
    const std::string socketPath = folder.file("Library/Caches/jvncontrol.sock");
    testing_support::HeldClock clock;
    services::EventLoop loop{clock};
    ControlPlace place;
    std::string said;
    std::optional<Daemon> daemon;
};

TEST_F(DaemonTest, ItTellsThePageWhatItKnows) {
    store(1);
    start();
    ASSERT_TRUE(told());
    EXPECT_EQ(told()->bluetooth, daemon_status::Bluetooth::on);
    EXPECT_FALSE(told()->isKeyboardChosen);

    store(6);

    EXPECT_TRUE(loop.runUntil([&] { return told() && told()->isKeyboardChosen; }));
}

// Where the file alone would say nothing: its folder was taken away, and nothing is heard of the one that has come.
TEST_F(DaemonTest, AChangeThatIsAnnouncedIsReadWhateverIsHeardOfTheFile) {
    const testing_support::PrivateBus bus;
    const testing_support::BusPeer page(bus.address());
    store(6);
    start(StartedBy::Somebody);
    ASSERT_TRUE(hears("keyboard plays"));
    std::filesystem::remove_all(folder.file("var/mobile"));
    ASSERT_TRUE(hears("keyboard does not play"));
    said.clear();
    store(6);

    EXPECT_TRUE(announces(page, "com.quorrel.jvnprefs", "changed"));

    EXPECT_TRUE(hears("keyboard plays"));
}

TEST_F(DaemonTest, BluetoothIsBroughtUpWhenThePageIsAboutToConnect) {
    const testing_support::PrivateBus bus;
    const testing_support::BusPeer page(bus.address());
    std::filesystem::create_directories(folder.file("var/joyvane"));
    std::ofstream(folder.file("var/joyvane/simulated-controllers")) << "bluetooth off\n";
    store(1, address);
    start(StartedBy::Somebody);
    const auto is = [this](daemon_status::Bluetooth state) { return told() && told()->bluetooth == state; };
    ASSERT_TRUE(is(daemon_status::Bluetooth::off));

    EXPECT_TRUE(announces(page, "com.quorrel", "jvninitbt"));

    codeWithin(1s);
    EXPECT_TRUE(loop.runUntil([&] { return is(daemon_status::Bluetooth::on); }));
}

TEST_F(DaemonTest, WhatNobodyNeedsEndsAfterAMinute) {
    store(1);
    start();

    EXPECT_EQ(codeWithin(59s), exitStays);
    EXPECT_EQ(codeWithin(2s), exitSuccess);
}

TEST_F(DaemonTest, AKeyboardKeepsIt) {
    store(6);
    start();

    EXPECT_EQ(codeWithin(3600s), exitStays);
}

TEST_F(DaemonTest, AStoredAddressKeepsIt) {
    store(1, address);
    start();

    EXPECT_EQ(codeWithin(3600s), exitStays);
}

TEST_F(DaemonTest, WhatNoManagerStartsAgainStays) {
    store(1);
    start(StartedBy::Somebody);

    EXPECT_EQ(codeWithin(3600s), exitStays);
}

TEST_F(DaemonTest, ACallerKeepsItAndTheMinuteBeginsWithItsEnd) {
    store(0);
    start();
    EXPECT_EQ(codeWithin(50s), exitStays);
    {
        const auto caller = call();
        // Waits for a pad that calls, and so is not closed for its silence.
        JVNControlFrame connect;
        connect.command = JVNControlCommand::Connect;
        ASSERT_EQ(::send(caller.get(), &connect, JVNControlFrame::fullSize, MSG_NOSIGNAL), 20);
        ASSERT_TRUE(hears("Connect, PS3 controller"));
        EXPECT_EQ(codeWithin(15s), exitStays);
        JVNControlFrame end;
        end.command = JVNControlCommand::EndSession;
        ASSERT_EQ(::send(caller.get(), &end, JVNControlFrame::baseSize, MSG_NOSIGNAL), 12);
        ASSERT_TRUE(hears("EndSession"));
    }

    EXPECT_EQ(codeWithin(59s), exitStays);
    EXPECT_EQ(codeWithin(2s), exitSuccess);
}

TEST_F(DaemonTest, ACallerThatGoesOnAskingKeepsItForLongerThanAMinute) {
    store(1);
    start();
    const auto caller = call();
    JVNControlFrame color;
    color.command = JVNControlCommand::SetLEDColor;
    for (int seconds = 0; seconds < 120; seconds += 4) {
        said.clear();
        ASSERT_EQ(::send(caller.get(), &color, JVNControlFrameSize(color.command), MSG_NOSIGNAL), 16);
        ASSERT_TRUE(hears("SetLEDColor"));
        ASSERT_EQ(codeWithin(4s), exitStays) << seconds;
    }
}

TEST_F(DaemonTest, WhatIsChosenInTheMinuteKeepsItAsLongAsItIsChosen) {
    store(1);
    start();
    EXPECT_EQ(codeWithin(50s), exitStays);

    store(6);
    ASSERT_TRUE(hears("keyboard plays"));
    EXPECT_EQ(codeWithin(3600s), exitStays);
    store(1);
    ASSERT_TRUE(hears("keyboard does not play"));

    EXPECT_EQ(codeWithin(59s), exitStays);
    EXPECT_EQ(codeWithin(2s), exitSuccess);
}

} // namespace
