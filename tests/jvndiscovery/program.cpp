// The real tool: by its process, the buses, signals and the preferences' file.

#include "tests/jvndiscovery/DiscoveryProgramTest.h"

using namespace std::chrono_literals;
using namespace testing_support;

const char* testing_support::DiscoveryProgramTest::toolPath() { return JOYVANE_JVNDISCOVERY; }

namespace {

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
