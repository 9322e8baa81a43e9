// The real tool: by its process, the buses, signals and the preferences' file.

#include "platform/foundation/NSData.h"
#include "platform/foundation/NSDictionary.h"
#include "system/files/Descriptor.h"
#include "system/preferences/FileLock.h"
#include "system/preferences/PreferencesFile.h"
#include "tests/jvndiscovery/PageServer.h"
#include "tests/jvndiscovery/ToolProcess.h"
#include "tests/support/MockBluetoothService.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/TemporaryFolder.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>

using namespace std::chrono_literals;
using testing_support::MockBluetoothService;
using testing_support::MockDevice;
using testing_support::PageServer;
using testing_support::PrivateBus;
using testing_support::ToolProcess;

namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr bool isSanitized = true;
#elif defined(__has_feature)
constexpr bool isSanitized = __has_feature(address_sanitizer) || __has_feature(thread_sanitizer);
#else
constexpr bool isSanitized = false;
#endif

class DiscoveryProgramTest : public testing::Test {
protected:
    DiscoveryProgramTest() {
        ::setenv("JOYVANE_ROOT", folder.path().c_str(), 1);
        std::filesystem::create_directories(preferences);
        choose(1);
    }
    ~DiscoveryProgramTest() override { ::unsetenv("JOYVANE_ROOT"); }

    void choose(int type) const {
        write("<plist version=\"1.0\"><dict><key>controller_type</key><integer>" + std::to_string(type) +
              "</integer><key>JVNLEDColorKey</key><string>00ff00</string></dict></plist>");
    }
    void write(const std::string& text) const { std::ofstream(file) << text; }
    std::string content() const {
        std::ifstream stream(file);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    // What is stored under a key.
    id stored(const char* key) const {
        const seat::Descriptor directory(::open(preferences.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
        const auto read = seat::PreferencesFile::read(directory.get(), "com.quorrel.joyvane.plist");
        return read.values ? read.values->objectForKey(key) : id();
    }
    std::string storedAddress() const {
        const auto data = stored("PS4BluetoothAddress").object<NSData>();
        std::string text;
        for (std::size_t i = 0; data && i < data->length(); ++i) {
            char digits[4];
            std::snprintf(digits, sizeof digits, "%02X ", data->bytes()[i]);
            text += digits;
        }
        return text;
    }
    ToolProcess& start(std::vector<std::string> arguments = {}) {
        arguments.insert(arguments.begin(), JOYVANE_JVNDISCOVERY);
        tool.reset();
        tool.emplace(loop, std::move(arguments), folder.file("errors"));
        return *tool;
    }
    bool until(const std::function<bool()>& done) { return loop.runUntil(done); }
    // Of what the loop does not hear of.
    bool untilSeen(const std::function<bool()>& done) {
        for (int i = 0; i < 2000 && !done(); ++i) loop.runUntil(done, 5ms);
        return done();
    }
    long count(const std::string& call) const { return std::count(service.calls.begin(), service.calls.end(), call); }
    void expectNothingLeft() {
        EXPECT_TRUE(until([&] { return !service.isSearching() && !service.hasAgent() && !service.isPairing(); }));
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(preferences))
            names.push_back(entry.path().filename());
        std::erase(names, ".lock.com.quorrel.joyvane");
        EXPECT_EQ(names, std::vector<std::string>{"com.quorrel.joyvane.plist"});
    }

    const std::string pad = "00:AA:01:01:00:01";
    testing_support::TemporaryFolder folder;
    const std::string preferences = folder.file("var/mobile/Library/Preferences");
    const std::string file = preferences + "/com.quorrel.joyvane.plist";
    PrivateBus systemBus{PrivateBus::Start::Now, "DBUS_SYSTEM_BUS_ADDRESS"};
    PrivateBus sessionBus;
    services::EventLoop loop;
    MockBluetoothService service{loop};
    PageServer page{loop};
    std::optional<ToolProcess> tool;
};

TEST_F(DiscoveryProgramTest, PairsStoresAndTellsThePageInItsOrder) {
    service.addAdapter();
    service.addDevice({.address = pad});

    EXPECT_EQ(start().code(), 0) << tool->errors();

    EXPECT_EQ(page.states, "402");
    EXPECT_EQ(storedAddress(), "00 AA 01 01 00 01 ");
    EXPECT_EQ(*stored("JVNLEDColorKey").string(), "00ff00");
    EXPECT_TRUE(service.device(pad).isPaired && service.device(pad).isTrusted && service.device(pad).isConnected);
    expectNothingLeft();
    EXPECT_EQ(tool->errors(), "");
}

TEST_F(DiscoveryProgramTest, TheAddressIsInTheFileBeforeThePageHearsOfIt) {
    service.addAdapter();
    service.addDevice({.address = pad});
    start();

    EXPECT_TRUE(until([&] { return page.states.ends_with('2'); }));

    EXPECT_EQ(storedAddress(), "00 AA 01 01 00 01 ");
}

TEST_F(DiscoveryProgramTest, WithoutAnAdapterThePageIsToldSo) {
    EXPECT_EQ(start().code(), 1);

    EXPECT_EQ(page.states, "3");
}

TEST_F(DiscoveryProgramTest, WithoutABluetoothServiceThePageIsToldSo) {
    service.vanish();

    EXPECT_EQ(start().code(), 1);

    EXPECT_EQ(page.states, "3");
}

TEST_F(DiscoveryProgramTest, TypesThatAreNotPairedSendNothing) {
    service.addAdapter();
    for (const int type : {0, 6}) {
        choose(type);
        EXPECT_EQ(start().code(), 2) << type;
    }
    std::filesystem::remove(file); // nothing was chosen yet
    EXPECT_EQ(start().code(), 2);

    EXPECT_EQ(page.states, "");
    EXPECT_TRUE(service.calls.empty());
}

TEST_F(DiscoveryProgramTest, EveryOtherTypeSearches) {
    service.addAdapter();
    for (const int type : {2, 3, 4, 5, 7, -1}) {
        choose(type);
        page.states.clear();
        start();
        EXPECT_TRUE(until([&] { return page.states == "40"; })) << type;
        tool->interrupt();
        EXPECT_EQ(tool->code(), 0);
    }
}

TEST_F(DiscoveryProgramTest, ADamagedFileIsLeftAsItIs) {
    service.addAdapter();
    write("no property list");

    EXPECT_EQ(start().code(), 1);

    EXPECT_EQ(content(), "no property list");
    EXPECT_NE(tool->errors().find("com.quorrel.joyvane"), std::string::npos) << tool->errors();
}

TEST_F(DiscoveryProgramTest, ARequestForAPinIsRefusedWithOneLineThatSaysWhy) {
    service.addAdapter();
    service.addDevice({.address = pad, .wantsPin = true});
    start();

    EXPECT_TRUE(until([&] { return page.states == "400"; }));

    EXPECT_EQ(service.agentAnswers, std::vector<std::string>{"org.bluez.Error.Rejected"});
    EXPECT_NE(tool->errors().find("jvndiscovery: pairing with ..:00:01: refused, since it asks for a PIN\n"),
              std::string::npos)
        << tool->errors();
    tool->interrupt();
    EXPECT_EQ(tool->code(), 0);
    EXPECT_EQ(storedAddress(), "");
    expectNothingLeft();
}

TEST_F(DiscoveryProgramTest, ALostBondIsRemovedAndPairedAnew) {
    service.addAdapter();
    service.addDevice({.address = pad, .hasForgotten = true, .isPaired = true});
    start();
    ASSERT_TRUE(until([&] { return count("RemoveDevice 00:01") == 1 && !service.device(pad).isKnown; }));

    service.appear(pad);

    EXPECT_EQ(tool->code(), 0);
    EXPECT_EQ(page.states, "402");
    EXPECT_TRUE(service.device(pad).isPaired);
}

TEST_F(DiscoveryProgramTest, AServiceThatIsRestartedInTheMiddleIsUsedAgain) {
    service.addAdapter();
    start();
    ASSERT_TRUE(until([&] { return service.isSearching(); }));

    service.vanish();
    loop.runUntil([] { return false; }, 300ms);
    service.addDevice({.address = pad});
    service.start();

    EXPECT_EQ(tool->code(), 0) << tool->errors();
    EXPECT_EQ(page.states, "4002");
}

TEST_F(DiscoveryProgramTest, AnAdapterThatIsPulledOutIsSaid) {
    service.addAdapter();
    start();
    ASSERT_TRUE(until([&] { return service.isSearching(); }));

    service.removeAdapter("hci0");

    EXPECT_TRUE(loop.runUntil([&] { return tool->isOver(); }, 20s));
    EXPECT_EQ(tool->code(), 1);
    EXPECT_EQ(page.states, "403");
}

// At each question that it asks of the service.
TEST_F(DiscoveryProgramTest, AnInterruptionAtAnyMomentEndsItWithinHalfASecondAndLeavesNothing) {
    const std::vector<std::string> moments{"GetManagedObjects", "Set Powered",     "StartDiscovery",
                                           "StopDiscovery",     "RegisterAgent",   "Pair",
                                           "Set Trusted",       "Set WakeAllowed", "Connect"};
    for (const auto& moment : moments) {
        for (const bool isStalled : {false, true}) {
            service.addAdapter("hci0", false);
            service.addDevice({.address = pad});
            page.states.clear();
            if (isStalled) service.stall(moment);
            bool isThere = false;
            service.arrived = [&](const std::string& member) {
                if (member == moment && !std::exchange(isThere, true)) tool->interrupt();
            };
            start();
            EXPECT_EQ(tool->code(), 0) << moment;
            EXPECT_LT(tool->endTime(), 500ms) << moment;
            expectNothingLeft();
            EXPECT_FALSE(service.device(pad).isPaired) << moment;
            EXPECT_EQ(page.states.find('2'), std::string::npos) << moment;
            EXPECT_EQ(storedAddress(), "") << moment;
            service.arrived = nullptr;
            service.behave(moment);
            service.removeDevice(pad);
            service.removeAdapter("hci0");
        }
    }
}

TEST_F(DiscoveryProgramTest, AnInterruptionBeforeTheBusHasAnsweredEndsItToo) {
    systemBus.stop();
    start();
    // It takes signals for itself from the first line of its program on.
    ASSERT_TRUE(untilSeen([&] {
        std::ifstream status("/proc/" + std::to_string(tool->identifier()) + "/status");
        const std::string text{std::istreambuf_iterator<char>(status), {}};
        return text.find("SigBlk:\t0000000000004003") != std::string::npos || tool->isOver();
    }));

    tool->interrupt();

    EXPECT_EQ(tool->code(), 0);
    EXPECT_LT(tool->endTime(), 500ms);
    EXPECT_EQ(page.states, "");
    systemBus.resume();
}

TEST_F(DiscoveryProgramTest, AServiceThatHangsDoesNotHoldTheInterruptionUp) {
    service.addAdapter();
    for (const char* member : {"StopDiscovery", "CancelPairing", "UnregisterAgent", "RemoveDevice", "Pair"})
        service.stall(member);
    service.addDevice({.address = pad});
    start();
    ASSERT_TRUE(until([&] { return service.isPairing() || count("Pair 00:01") == 1; }));

    tool->interrupt();

    EXPECT_EQ(tool->code(), 0);
    EXPECT_LT(tool->endTime(), 500ms);
}

TEST_F(DiscoveryProgramTest, TwentyPairingsLeaveNothingBehind) {
    service.addAdapter();
    for (int i = 0; i < 20; ++i) {
        const std::string address = "00:AA:01:01:01:" + std::string(i < 10 ? "0" : "") + std::to_string(i);
        service.addDevice({.address = address});
        page.states.clear();
        EXPECT_EQ(start().code(), 0) << i;
        EXPECT_EQ(page.states, "402") << i;
        expectNothingLeft();
        service.device(address).isDiscoverable = false;
    }
    EXPECT_EQ(storedAddress(), "00 AA 01 01 01 19 ");
}

TEST_F(DiscoveryProgramTest, AnAddressThatCannotBeStoredIsNoSuccess) {
    service.addAdapter();
    service.addDevice({.address = pad});
    {
        const seat::Descriptor directory(::open(preferences.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        const seat::FileLock lock(directory.get(), ".lock.com.quorrel.joyvane", 1s);
        ASSERT_TRUE(lock.isHeld());
        start();
        EXPECT_TRUE(until([&] { return page.states == "400"; })) << page.states;
        EXPECT_TRUE(until([&] { return !service.device(pad).isPaired; }));
    }
    tool->interrupt();

    EXPECT_EQ(tool->code(), 0);
    EXPECT_EQ(storedAddress(), "");
    EXPECT_NE(tool->errors().find("storing the address of ..:00:01: "), std::string::npos) << tool->errors();
    EXPECT_EQ(tool->errors().find("00:AA"), std::string::npos) << "a whole address";
}

TEST_F(DiscoveryProgramTest, EndsWithWhoStartedIt) {
    service.addAdapter();
    tool.emplace(loop, std::vector<std::string>{"/bin/sh", "-c", JOYVANE_JVNDISCOVERY " & wait"},
                 folder.file("errors"));
    ASSERT_TRUE(until([&] { return service.isSearching(); }));

    ::kill(tool->identifier(), SIGKILL);

    EXPECT_TRUE(until([&] { return !service.isSearching(); }));
}

TEST_F(DiscoveryProgramTest, PairsWithoutAPageToo) {
    sessionBus.kill();
    service.addAdapter();
    service.addDevice({.address = pad});

    EXPECT_EQ(start().code(), 0) << tool->errors();

    EXPECT_EQ(storedAddress(), "00 AA 01 01 00 01 ");
}

TEST_F(DiscoveryProgramTest, APageThatDoesNotAnswerIsNotWaitedForForEver) {
    service.addAdapter();
    service.addDevice({.address = pad});
    sessionBus.stop();

    const int code = start().code();
    sessionBus.resume();

    EXPECT_EQ(code, 0);
    EXPECT_EQ(storedAddress(), "00 AA 01 01 00 01 ");
}

TEST_F(DiscoveryProgramTest, LoadsNoToolkit) {
    service.addAdapter();
    start();
    ASSERT_TRUE(until([&] { return service.isSearching(); }));

    std::ifstream stream("/proc/" + std::to_string(tool->identifier()) + "/maps");
    const std::string maps{std::istreambuf_iterator<char>(stream), {}};

    EXPECT_NE(maps.find("libsystemd"), std::string::npos);
    for (const char* library : {"libQt", "libdbus", "libX11", "libwayland", "libjoyvane"})
        EXPECT_EQ(maps.find(library), std::string::npos) << library;
}

TEST_F(DiscoveryProgramTest, SleepsAndIsSmallWhileItSearches) {
    if (isSanitized) GTEST_SKIP() << "sanitizers have memory and threads of their own";
    service.addAdapter();
    start();
    ASSERT_TRUE(until([&] { return page.states == "40" && service.isSearching(); }));
    loop.runUntil([] { return false; }, 100ms);
    const auto before = tool->wakeUps();

    loop.runUntil([] { return false; }, 500ms);

    EXPECT_EQ(tool->wakeUps(), before);
    EXPECT_LE(tool->privateMemory(), 2048 * 1024);
    RecordProperty("private_kib", static_cast<int>(tool->privateMemory() / 1024));
}

TEST_F(DiscoveryProgramTest, PairsASimulatedControllerOfTheTypeThatThePageAsksFor) {
    choose(2);

    EXPECT_EQ(start({"--simulate"}).code(), 0) << tool->errors();

    EXPECT_EQ(page.states, "402");
    EXPECT_EQ(storedAddress(), "00 AA 01 02 00 02 ");
    EXPECT_TRUE(service.calls.empty()) << "the real service was asked";
    std::ifstream world(folder.file("var/joyvane/simulated-controllers"));
    const std::string text{std::istreambuf_iterator<char>(world), {}};
    EXPECT_NE(text.find("00:AA:01:02:00:02 type=2 pairing paired trusted connected : "), std::string::npos) << text;
}

TEST_F(DiscoveryProgramTest, HelpAndVersionNeedNothing) {
    EXPECT_EQ(start({"--help"}).code(), 0);
    EXPECT_EQ(start({"--version"}).code(), 0);
    EXPECT_EQ(page.states, "");
}

TEST_F(DiscoveryProgramTest, AWrongCommandLineIsSaid) {
    EXPECT_EQ(start({"--nonsense"}).code(), 2);
    EXPECT_EQ(tool->errors(), "jvndiscovery: unknown argument \"--nonsense\"; see jvndiscovery --help\n");
    EXPECT_EQ(start({"--root"}).code(), 2);
    EXPECT_EQ(start({"--root="}).code(), 2);
}

} // namespace
