#include "system/bus/session_bus_address.h"

#include "system/bus/connect_to_bus.h"
#include "tests/support/LoggedLines.h"
#include "tests/support/PrivateBus.h"
#include "tests/system/bus/RelayClient.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <optional>
#include <utility>
#include <vector>

namespace {

using testing_support::PrivateBus;
using testing_support::TemporaryFolder;

// Puts the variables back as they were.
class Environment {
public:
    Environment() {
        for (const char* const name : {"DBUS_SESSION_BUS_ADDRESS", "XDG_RUNTIME_DIR"}) {
            const char* const value = std::getenv(name);
            m_saved.emplace_back(name, value ? std::optional<std::string>(value) : std::nullopt);
            ::unsetenv(name);
        }
    }
    ~Environment() {
        for (const auto& [name, value] : m_saved)
            value ? ::setenv(name.c_str(), value->c_str(), 1) : ::unsetenv(name.c_str());
    }
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;

private:
    std::vector<std::pair<std::string, std::optional<std::string>>> m_saved;
};

bool connects(const std::string& address) {
    std::string problem;
    return static_cast<bool>(seat::connectToBus(address, problem));
}

TEST(SessionBusAddress, AddressesThatLeadNowhereFailAtOnce) {
    const TemporaryFolder folder;
    for (const std::string& address : {std::string(), std::string("autolaunch:"), "unix:path=" + folder.file("none"),
                                       std::string("tcp:host=localhost"), "unix:path=/" + std::string(200, 'x'),
                                       std::string("unix:guid=12"), std::string("nonsense")})
        EXPECT_FALSE(connects(address)) << address;
}

TEST(SessionBusAddress, TheFirstOfSeveralThatTakesTheConnectionCounts) {
    const PrivateBus bus;

    EXPECT_TRUE(connects("unix:path=/nonexistent/bus;" + bus.address()));
}

TEST(SessionBusAddress, ABusWhoseBacklogIsFullIsNotWaitedFor) {
    const TemporaryFolder folder;
    const seat::Descriptor listener(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_un name{};
    name.sun_family = AF_UNIX;
    std::strcpy(name.sun_path, folder.file("a b").c_str());
    ASSERT_EQ(0, ::bind(listener.get(), reinterpret_cast<const sockaddr*>(&name), sizeof name));
    ASSERT_EQ(0, ::listen(listener.get(), 0));
    const std::string address = "unix:path=" + folder.path() + "/a%20b,guid=00";

    std::string problem;
    std::vector<seat::Descriptor> callers;
    do {
        callers.push_back(seat::connectToBus(address, problem));
    } while (callers.back() && callers.size() < 100);

    EXPECT_GT(callers.size(), 1u);
    EXPECT_EQ("it takes no more connections", problem);
}

TEST(SessionBusAddress, TheBusInTheRunTimeFolderIsFoundAndTheEnvironmentNamesTheRelay) {
    const Environment environment;
    const testing_support::LoggedLines log;
    PrivateBus bus;
    ::unsetenv("DBUS_SESSION_BUS_ADDRESS");
    ::setenv("XDG_RUNTIME_DIR", bus.socketFile().substr(0, bus.socketFile().rfind('/')).c_str(), 1);

    const auto relay = seat::settleSessionBus();

    EXPECT_EQ(bus.address(), seat::sessionBusAddress());
    ASSERT_TRUE(relay);
    EXPECT_EQ(relay->address(), std::getenv("DBUS_SESSION_BUS_ADDRESS"));
    EXPECT_TRUE(RelayClient(relay->address()).greet());
}

TEST(SessionBusAddress, WithoutABusTheEnvironmentStillHasAnAddressSoThatNobodyStartsOne) {
    const Environment environment;

    EXPECT_FALSE(seat::settleSessionBus());

    EXPECT_EQ("", seat::sessionBusAddress());
    EXPECT_STREQ("unix:path=/nonexistent/session-bus", std::getenv("DBUS_SESSION_BUS_ADDRESS"));
}

TEST(SessionBusAddress, ABusThatIsNamedInTheEnvironmentIsRememberedThoughItDoesNotAnswer) {
    const Environment environment;
    const PrivateBus bus;
    bus.stop();

    const auto relay = seat::settleSessionBus();

    EXPECT_EQ(bus.address(), seat::sessionBusAddress());
}

} // namespace
