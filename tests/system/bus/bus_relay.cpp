#include "system/bus/BusRelay.h"
#include "tests/support/BusPeer.h"
#include "tests/support/LoggedLines.h"
#include "tests/support/PrivateBus.h"
#include "tests/system/bus/RelayClient.h"

#include <cstdlib>
#include <dbus/dbus.h>
#include <gtest/gtest.h>

namespace {

using namespace std::chrono_literals;
using testing_support::BusPeer;
using testing_support::PrivateBus;

// Of a bus that is well, however busy the machine; and of one that stops, which a call waits for once.
constexpr seat::RelayTimeouts ofAnyMachine{.greeting = 20s, .answer = 20s};
constexpr seat::RelayTimeouts ofABusThatStops{.greeting = 20s, .answer = 1s};
// A hundred calls that each waited would take six times that.
constexpr auto soon = 15s;

class BusRelay : public ::testing::Test {
protected:
    BusRelay() { relay.start(); }

    testing_support::LoggedLines log;
    PrivateBus bus;
    seat::BusRelay relay{bus.address(), ofABusThatStops};
    RelayClient client{relay.address()};
};

TEST_F(BusRelay, CallsAnswersAndSignalsPassInBothDirections) {
    ASSERT_TRUE(client.greet());

    EXPECT_EQ("true", client.nameHasOwner(client.uniqueName()));
    EXPECT_EQ("false", client.nameHasOwner("com.example.nobody"));

    client.listen("type='signal',interface='com.example.news'");
    BusPeer(bus.address()).emitSignal("/here", "com.example.news", "Came");
    EXPECT_TRUE(client.hears("com.example.news", "Came"));
    EXPECT_TRUE(log.all().empty());
}

TEST_F(BusRelay, ABusThatStopsCostsTheFirstCallAMomentAndLaterOnesNothing) {
    ASSERT_TRUE(client.greet());
    bus.stop();

    const auto start = Clock::now();
    EXPECT_EQ(DBUS_ERROR_NO_REPLY, client.nameHasOwner("com.example.nobody"));
    EXPECT_LT(Clock::now() - start, soon);
    const auto second = Clock::now();
    for (int i = 0; i < 100; ++i) EXPECT_EQ(DBUS_ERROR_NO_REPLY, client.nameHasOwner("com.example.nobody"));
    EXPECT_LT(Clock::now() - second, soon);

    EXPECT_TRUE(client.becomes([&] { return log.count("accessibility: the session bus does not answer") == 1; }));
    bus.resume();
    EXPECT_TRUE(client.becomes([&] { return client.nameHasOwner("com.example.nobody") == "false"; }));
    EXPECT_EQ(1u, log.count("accessibility: the session bus answers again"));
    EXPECT_EQ(2u, log.all().size());
}

TEST(BusThatStops, BeforeItsGreetingIsSilentAtFirstAndServesWhenItGoesOn) {
    const testing_support::LoggedLines log;
    const PrivateBus bus;
    const BusPeer accessibility(bus.address());
    ASSERT_TRUE(accessibility.ownName("org.a11y.Bus"));
    bus.stop();
    seat::BusRelay relay(bus.address(), {.greeting = 50ms, .answer = 1s});
    relay.start();

    const auto start = Clock::now();
    RelayClient client(relay.address());
    EXPECT_TRUE(client.greet());
    EXPECT_EQ(DBUS_ERROR_NO_REPLY, client.nameHasOwner("org.a11y.Bus"));
    EXPECT_LT(Clock::now() - start, soon);
    EXPECT_EQ(1u, log.count("accessibility: the session bus does not answer"));

    bus.resume();
    EXPECT_TRUE(client.hears(DBUS_INTERFACE_DBUS, "NameOwnerChanged")) << "which makes the toolkit ask again";
    EXPECT_TRUE(client.becomes([&] { return client.nameHasOwner("com.example.nobody") == "false"; }));
    EXPECT_LE(1u, log.count("accessibility: the session bus answers again"));
}

TEST(AccessibilityBusThatStops, BeforeItsGreetingRefusesTheConnectionSoon) {
    const testing_support::LoggedLines log;
    const PrivateBus session;
    const PrivateBus bus;
    bus.stop();
    seat::BusRelay relay(session.address());
    relay.start();

    const auto start = Clock::now();
    EXPECT_FALSE(RelayClient(relay.doorToAccessibility(bus.address())).greet());
    EXPECT_LT(Clock::now() - start, soon);

    EXPECT_EQ(1u, log.count("accessibility: the accessibility bus does not answer"));
}

TEST(BusThatStops, OnceItHasGreetedTheRelayGreetsTheToolkit) {
    const testing_support::LoggedLines log;
    const PrivateBus bus;
    seat::BusRelay relay(bus.address());
    relay.start();
    RelayClient witness(bus.address());
    ASSERT_TRUE(witness.greet());
    // The two of them are the first on this bus.
    ASSERT_TRUE(witness.becomes(
        [&] { return witness.nameHasOwner(":1.0") == "true" && witness.nameHasOwner(":1.1") == "true"; }));
    witness.nameHasOwner(":1.0"); // what the bus has said before is written
    const std::string name = witness.uniqueName() == ":1.0" ? ":1.1" : ":1.0";
    bus.stop();

    RelayClient client(relay.address());
    EXPECT_TRUE(client.greet());

    EXPECT_EQ(name, client.uniqueName());
    EXPECT_EQ(DBUS_ERROR_NO_REPLY, client.nameHasOwner("com.example.nobody"));
}

TEST_F(BusRelay, ABusThatIsGoneRefusesTheConnectionAtOnce) {
    bus.kill();

    EXPECT_FALSE(client.greet());

    EXPECT_EQ(1u, log.count("accessibility: no session bus: Connection refused"));
}

// The toolkit never comes back from a call whose connection is closed meanwhile.
TEST_F(BusRelay, ABusThatDiesLeavesTheConnectionOpenAndEachCallFails) {
    ASSERT_TRUE(client.greet());
    bus.kill();

    EXPECT_TRUE(client.becomes([&] { return log.count("the session bus closed the connection") == 1; }));
    for (int i = 0; i < 100; ++i) EXPECT_EQ(DBUS_ERROR_NO_REPLY, client.nameHasOwner("com.example.nobody"));
    EXPECT_TRUE(client.isConnected());
}

TEST_F(BusRelay, ACallThatIsWaitingWhenTheBusDiesFails) {
    ASSERT_TRUE(client.greet());
    bus.stop();
    std::thread killer([this] {
        std::this_thread::sleep_for(5ms);
        bus.kill();
    });

    const auto start = Clock::now();
    EXPECT_EQ(DBUS_ERROR_NO_REPLY, client.nameHasOwner("com.example.nobody"));

    EXPECT_LT(Clock::now() - start, soon);
    EXPECT_TRUE(client.isConnected());
    killer.join();
}

TEST_F(BusRelay, AProgramThatDoesNotAnswerIsNotTheBusesFault) {
    const BusPeer sleeper(bus.address());
    ASSERT_TRUE(sleeper.ownName("com.example.sleeper"));
    ASSERT_TRUE(client.greet());

    EXPECT_EQ(DBUS_ERROR_NO_REPLY, client.call("com.example.sleeper", "Wake"));

    EXPECT_EQ("true", client.nameHasOwner("com.example.sleeper"));
    EXPECT_TRUE(
        client.becomes([&] { return log.count("com.example.sleeper on the session bus does not answer") == 1; }));
}

TEST_F(BusRelay, WhetherThereIsAccessibilityIsAskedAgainWhenTheAnswerCameTooLate) {
    const BusPeer accessibility(bus.address());
    ASSERT_TRUE(accessibility.ownName("org.a11y.Bus"));
    ASSERT_TRUE(client.greet());
    bus.stop();
    ASSERT_EQ(DBUS_ERROR_NO_REPLY, client.nameHasOwner("org.a11y.Bus"));

    bus.resume();

    EXPECT_TRUE(client.hears(DBUS_INTERFACE_DBUS, "NameOwnerChanged"));
}

TEST_F(BusRelay, WhereThereIsAccessibilityABusThatIsLateIsAnsweredFor) {
    relay.setAccessible();
    ASSERT_TRUE(client.greet());
    bus.stop();

    EXPECT_EQ("true", client.nameHasOwner("org.a11y.Bus"));
    EXPECT_EQ("true", client.call("org.a11y.Bus", "Get"));
    EXPECT_EQ(DBUS_ERROR_NO_REPLY, client.nameHasOwner("com.example.nobody"));
    bus.resume();
    EXPECT_TRUE(client.becomes([&] { return client.nameHasOwner("org.a11y.Bus") == "false"; }));
}

TEST_F(BusRelay, TheAccessibilityBusIsBehindTheRelayToo) {
    const PrivateBus other;
    AnsweringPeer accessibility(bus.address(), "org.a11y.Bus", other.address());
    ASSERT_TRUE(client.greet());

    const std::string address = client.call("org.a11y.Bus", "GetAddress");

    EXPECT_NE(other.address(), address);
    RelayClient second(address);
    ASSERT_TRUE(second.greet());
    EXPECT_EQ("false", second.nameHasOwner("org.a11y.Bus"));
    other.stop();
    EXPECT_EQ(DBUS_ERROR_NO_REPLY, second.nameHasOwner("org.a11y.Bus"));
    EXPECT_TRUE(client.becomes([&] { return log.count("the accessibility bus does not answer") == 1; }));
    EXPECT_EQ("true", client.nameHasOwner("org.a11y.Bus"));
}

TEST_F(BusRelay, NobodyElseIsServed) {
    const auto another = [](const std::string& address) {
        return std::system(("dbus-send --bus='" + address +
                            "' --print-reply --dest=org.freedesktop.DBus / org.freedesktop.DBus.GetId >/dev/null 2>&1")
                               .c_str());
    };

    EXPECT_NE(another(relay.address()), 0);

    EXPECT_EQ(another(bus.address()), 0) << "the bus itself serves it";
    EXPECT_TRUE(client.greet());
}

// What a bus says after the connection is made: garbage, a message of another version, one that is too long to be any.
class NonsenseFromABus : public ::testing::TestWithParam<std::string> {};

TEST_P(NonsenseFromABus, EndsTheConnectionAtOnce) {
    const testing_support::LoggedLines log;
    FakeBus bus("OK 0\r\n", GetParam());
    seat::BusRelay relay(bus.address(), ofAnyMachine);
    relay.start();
    RelayClient client(relay.address());

    EXPECT_FALSE(client.greet());

    EXPECT_EQ(1u, log.count("the session bus sent what is no message"));
}

INSTANTIATE_TEST_SUITE_P(All, NonsenseFromABus,
                         ::testing::Values(std::string(64, '\xff'), std::string(64, '\0'),
                                           "HTTP/1.1 400 Bad Request\r\n",
                                           std::string("l\2\1\2\0\0\0\0\1\0\0\0\0\0\0\0", 16),
                                           std::string("l\2\1\1\xff\xff\xff\x07\1\0\0\0\0\0\0\0", 16),
                                           // a signal of the right length, whose header is garbage
                                           std::string("l\4\1\1\0\0\0\0\1\0\0\0\x08\0\0\0", 16) +
                                               std::string(8, '\xff')));

TEST(BusThatRefuses, EndsTheConnectionAtOnce) {
    for (const std::string line : {"REJECTED KERBEROS\r\n", "HTTP/1.1 400 Bad Request\r\n", "\r\n"}) {
        const testing_support::LoggedLines log;
        FakeBus bus(line, "");
        seat::BusRelay relay(bus.address(), ofAnyMachine);
        relay.start();

        EXPECT_FALSE(RelayClient(relay.address()).greet()) << line;

        EXPECT_EQ(1u, log.count("the session bus refuses us")) << line;
    }
}

// The library ends the process over a name that can be none.
TEST(BusThatRefuses, IsOneThatGivesNoName) {
    for (const char* const name : {"", ":1..0", "nonsense", ":1.\"0"}) {
        const testing_support::LoggedLines log;
        FakeBus bus("OK 0\r\n", answerToTheFirstCall(name));
        seat::BusRelay relay(bus.address(), ofAnyMachine);
        relay.start();

        EXPECT_FALSE(RelayClient(relay.address()).greet()) << name;

        EXPECT_EQ(1u, log.count("the session bus refuses us")) << name;
    }
}

} // namespace
