// The real tool that the page starts, at the system's own Bluetooth service, with emulated radios.

#include "platform/foundation/NSData.h"
#include "platform/foundation/NSDictionary.h"
#include "services/common/EventLoop.h"
#include "system/files/Descriptor.h"
#include "system/preferences/PreferencesFile.h"
#include "tests/jvndiscovery/PageServer.h"
#include "tests/jvndiscovery/ToolProcess.h"
#include "tests/machine/support/BluetoothWorld.h"
#include "tests/machine/support/ControllersAgent.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/TemporaryFolder.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

using namespace std::chrono_literals;
using testing_support::ToolProcess;

namespace machine {
namespace {

// Under emulation, on a busy computer. What is wrong is seen at once all the same: it ends the tool, or is told.
constexpr auto longTime = 90s;
// What the tool promises is half a second; the machine may be several times slower.
constexpr auto endTime = 2s;

class Discovery : public testing::Test {
protected:
    Discovery() {
        ::setenv("JOYVANE_ROOT", folder.path().c_str(), 1);
        std::filesystem::create_directories(preferences);
        std::ofstream(preferences + "/com.quorrel.joyvane.plist")
            << R"(<plist version="1.0"><dict><key>controller_type</key><integer>1</integer></dict></plist>)";
    }
    ~Discovery() override { ::unsetenv("JOYVANE_ROOT"); }

    void start() {
        page.states.clear();
        tool.reset();
        tool.emplace(loop, std::vector<std::string>{JVNDISCOVERY_PROGRAM}, folder.file("errors"));
    }
    bool until(const std::function<bool()>& done) { return loop.runUntil(done, longTime); }
    // Of what the loop does not hear of.
    bool untilSeen(const std::function<bool()>& done) {
        return waitUntil([&] { return loop.runUntil(done, 10ms); }, longTime);
    }
    int code() {
        until([&] { return tool->isOver(); });
        return tool->code();
    }
    // What the page has been told; waits for the whole of it, which may come after the tool's end.
    const std::string& told(const std::string& whole) {
        until([&] { return page.states.size() >= whole.size(); });
        return page.states;
    }
    std::string storedAddress() const {
        const seat::Descriptor directory(::open(preferences.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
        const auto read = seat::PreferencesFile::read(directory.get(), "com.quorrel.joyvane.plist");
        const auto data = read.values ? read.values->objectForKey("PS4BluetoothAddress").object<NSData>() : nullptr;
        std::string text;
        for (std::size_t i = 0; data && i < data->length(); ++i) {
            char digits[4];
            std::snprintf(digits, sizeof digits, "%02X ", data->bytes()[i]);
            text += digits;
        }
        return text;
    }
    void expectNothingBegun() {
        EXPECT_TRUE(untilSeen([&] { return !world.isSearching(); }));
        EXPECT_FALSE(world.controllerIs("Paired"));
        EXPECT_EQ(storedAddress(), "");
    }
    // With these radios, and the controller in this state.
    void prepare(BluetoothWorld::Controller controller = BluetoothWorld::Controller::Calls,
                 BluetoothWorld::Radios radios = BluetoothWorld::Radios::Classic) {
        world.plug(radios);
        world.startService();
        world.prepare(controller);
    }
    void startSearchThatFindsNothing() {
        prepare(BluetoothWorld::Controller::Hides);
        start();
        ASSERT_TRUE(untilSeen([&] { return page.states == "40" && world.isSearching(); })) << tool->errors();
    }

    BluetoothWorld& world = BluetoothWorld::shared();
    testing_support::TemporaryFolder folder;
    const std::string preferences = folder.file("var/mobile/Library/Preferences");
    testing_support::PrivateBus sessionBus;
    services::EventLoop loop;
    testing_support::PageServer page{loop};
    std::optional<ToolProcess> tool;
};

TEST_F(Discovery, FindsPairsTrustsStoresAndTellsThePageInItsOrder) {
    prepare(BluetoothWorld::Controller::Calls, BluetoothWorld::Radios::DualMode);

    start();

    EXPECT_EQ(code(), 0) << tool->errors();
    EXPECT_EQ(told("402"), "402");
    EXPECT_EQ(storedAddress(), "00 AA 01 01 00 01 ");
    EXPECT_TRUE(world.controllerIs("Paired"));
    EXPECT_TRUE(world.controllerIs("Trusted"));
    EXPECT_TRUE(untilSeen([&] { return !world.isSearching(); }));
}

TEST_F(Discovery, TwentyPairingsLeaveNothingBehind) {
    prepare();
    for (int i = 0; i < 20; ++i) {
        start();
        ASSERT_EQ(code(), 0) << "pairing " << i << ": " << tool->errors();
        EXPECT_EQ(told("402"), "402") << "pairing " << i;
        world.forget();
        ASSERT_TRUE(untilSeen([&] { return world.devices() == 0 && !world.isSearching(); })) << "pairing " << i;
    }

    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(preferences)) names.push_back(entry.path().filename());
    std::erase(names, ".lock.com.quorrel.joyvane");
    EXPECT_EQ(names, std::vector<std::string>{"com.quorrel.joyvane.plist"});
}

TEST_F(Discovery, AnInterruptedSearchLeavesNothingBehind) {
    startSearchThatFindsNothing();

    tool->interrupt();

    EXPECT_EQ(code(), 0) << tool->errors();
    EXPECT_LT(tool->endTime(), endTime);
    EXPECT_EQ(told("40"), "40");
    expectNothingBegun();
}

TEST_F(Discovery, ARequestForAPinIsRefusedWithALineThatSaysWhyAndTheSearchGoesOn) {
    prepare();
    const ControllersAgent controller(loop, ControllersAgent::Answer::Pin);
    world.prepare(BluetoothWorld::Controller::CallsAndWantsAPin);
    start();

    EXPECT_TRUE(until([&] { return page.states == "400"; })) << page.states << tool->errors();

    EXPECT_NE(tool->errors().find("refused, since it asks for a PIN\n"), std::string::npos) << tool->errors();
    tool->interrupt();
    EXPECT_EQ(code(), 0);
    expectNothingBegun();
}

TEST_F(Discovery, AServiceThatCrashesInTheMiddleOfAPairingIsPairedWithAgain) {
    prepare();
    {
        const ControllersAgent controller(loop, ControllersAgent::Answer::Nothing);
        start();
        ASSERT_TRUE(until([&] { return controller.isAsked; })) << tool->errors();
        world.stopService(BluetoothWorld::Stop::Crash);
        world.hide(); // until all is as it shall be again
    }
    EXPECT_EQ(storedAddress(), "");

    prepare();

    EXPECT_EQ(code(), 0) << tool->errors();
    // A radio whose connection has just been cut may not answer the first call.
    EXPECT_TRUE(until([&] { return page.states.ends_with('2'); })) << page.states << tool->errors();
    EXPECT_TRUE(page.states.starts_with("400")) << page.states;
    EXPECT_EQ(page.states.find_first_not_of('0', 1), page.states.size() - 1) << page.states;
    EXPECT_TRUE(world.controllerIs("Paired"));
    EXPECT_EQ(storedAddress(), "00 AA 01 01 00 01 ");
}

TEST_F(Discovery, AServiceThatIsRestartedInTheMiddleOfASearchIsSearchedWithAgain) {
    startSearchThatFindsNothing();

    world.stopService();
    prepare();

    EXPECT_EQ(code(), 0) << tool->errors();
    EXPECT_EQ(told("4002"), "4002");
    EXPECT_TRUE(world.controllerIs("Paired"));
}

TEST_F(Discovery, ARadioThatIsUnpluggedInTheMiddleIsSaid) {
    startSearchThatFindsNothing();

    world.plug(BluetoothWorld::Radios::None);

    EXPECT_EQ(code(), 1) << tool->errors();
    EXPECT_EQ(told("403"), "403");
    EXPECT_EQ(storedAddress(), "");
}

TEST_F(Discovery, WithoutARadioThePageIsToldSo) {
    world.plug(BluetoothWorld::Radios::None);

    start();

    EXPECT_EQ(code(), 1) << tool->errors();
    EXPECT_EQ(told("3"), "3");
}

} // namespace
} // namespace machine
