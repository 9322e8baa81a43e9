// The real tool is interrupted, or left alone by who started it.

#include "tests/jvndiscovery/DiscoveryProgramTest.h"

using namespace std::chrono_literals;
using namespace testing_support;

namespace {

// A machine that is busy with other things may be late itself, but not each time.
template <class Attempt> void expectOnce(const Attempt& isInTime, const std::string& what) {
    for (int attempt = 0; attempt < 5; ++attempt)
        if (isInTime()) return;
    ADD_FAILURE() << what << ": never in time";
}

// At each question that it asks of the service.
TEST_F(DiscoveryProgramTest, AnInterruptionAtAnyMomentEndsItWithinHalfASecondAndLeavesNothing) {
    const std::vector<std::string> moments{"GetManagedObjects", "Set Powered",     "StartDiscovery",
                                           "StopDiscovery",     "RegisterAgent",   "Pair",
                                           "Set Trusted",       "Set WakeAllowed", "Connect"};
    enum class Service { Answers, Hangs };
    const auto isInTime = [this](const std::string& moment, Service behaviour) {
        service.addAdapter("hci0", false);
        service.addDevice({.address = pad});
        page.states.clear();
        if (behaviour == Service::Hangs) service.stall(moment);
        bool isThere = false;
        service.arrived = [&](const std::string& member) {
            if (member == moment && !std::exchange(isThere, true)) tool->interrupt();
        };
        const int code = start().code();
        if (isThere) {
            EXPECT_EQ(code, 0) << moment;
            expectNothingLeft();
            EXPECT_TRUE(until([&] { return !service.device(pad).isPaired; })) << moment;
            EXPECT_EQ(page.states.find('2'), std::string::npos) << moment;
            EXPECT_EQ(storedAddress(), "") << moment;
        }
        service.arrived = nullptr;
        service.behave(moment);
        service.removeDevice(pad);
        service.removeAdapter("hci0");
        return isThere && tool->endTime() < 500ms;
    };
    for (const auto& moment : moments) {
        expectOnce([&] { return isInTime(moment, Service::Answers); }, moment);
        expectOnce([&] { return isInTime(moment, Service::Hangs); }, moment + ", not answered");
    }
}

TEST_F(DiscoveryProgramTest, AnInterruptionBeforeTheBusHasAnsweredEndsItToo) {
    systemBus.stop();
    const auto isInTime = [this] {
        start();
        // It takes signals for itself from the first line of its program on.
        EXPECT_TRUE(untilSeen([&] {
            std::ifstream status("/proc/" + std::to_string(tool->identifier()) + "/status");
            const std::string text{std::istreambuf_iterator<char>(status), {}};
            return text.find("SigBlk:\t0000000000004003") != std::string::npos || tool->isOver();
        }));
        tool->interrupt();
        EXPECT_EQ(tool->code(), 0);
        return tool->endTime() < 500ms;
    };
    expectOnce(isInTime, "before the bus");
    EXPECT_EQ(page.states, "");
    systemBus.resume();
}

TEST_F(DiscoveryProgramTest, AServiceThatHangsDoesNotHoldTheInterruptionUp) {
    service.addAdapter();
    for (const char* member : {"StopDiscovery", "CancelPairing", "UnregisterAgent", "RemoveDevice", "Pair"})
        service.stall(member);
    service.addDevice({.address = pad});
    const auto isInTime = [this] {
        service.calls.clear();
        start();
        EXPECT_TRUE(until([&] { return service.isPairing() || count("Pair 00:01") == 1; }));
        tool->interrupt();
        EXPECT_EQ(tool->code(), 0);
        return tool->endTime() < 500ms;
    };
    expectOnce(isInTime, "a service that hangs");
}

TEST_F(DiscoveryProgramTest, EndsWithWhoStartedIt) {
    service.addAdapter();
    tool.emplace(loop, std::vector<std::string>{"/bin/sh", "-c", JOYVANE_JVNDISCOVERY " & wait"},
                 folder.file("errors"));
    ASSERT_TRUE(until([&] { return service.isSearching(); }));

    ::kill(tool->identifier(), SIGKILL);

    EXPECT_TRUE(until([&] { return !service.isSearching(); }));
}

} // namespace
