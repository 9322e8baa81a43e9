#include "tests/support/Heartbeat.h"
#include "tests/support/descriptors.h"
#include "tests/system/bus/BusTest.h"

#include <csignal>
#include <cstring>
#include <dbus/dbus.h>
#include <filesystem>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using seat::SessionBus;
using NameState = SessionBus::NameState;
using testing_support::BusPeer;
using testing_support::PrivateBus;
using namespace std::chrono_literals;

class BusLife : public BusTest {
protected:
    void ask() {
        session().addName(name, [this](NameState state) { m_states.push_back(state); });
    }
    bool stateIs(NameState state, double seconds = 10) {
        return runUntil([&] { return !m_states.empty() && m_states.back() == state; }, seconds);
    }
    double secondsSince(std::chrono::steady_clock::time_point start) const {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    }

    std::vector<NameState> m_states;
};

TEST_F(BusLife, TheNameIsBackWithinTwoSecondsOfTheBussReturn) {
    ask();
    ASSERT_TRUE(stateIs(NameState::Owned));

    for (int i = 0; i < 3; ++i) {
        bus.kill();
        ASSERT_TRUE(stateIs(NameState::Lost));
        EXPECT_FALSE(session().isConnected());
        bus.start();
        const auto back = std::chrono::steady_clock::now();
        ASSERT_TRUE(stateIs(NameState::Owned));
        EXPECT_LT(secondsSince(back), testing_support::busReturnSeconds);
    }
    EXPECT_TRUE(BusPeer(bus.address()).nameHasOwner(name));
}

TEST_F(BusLife, ABusThatComesAfterWeGaveUpTryingIsFoundByItsSocket) {
    bus.kill();
    std::filesystem::remove(bus.socketFile());
    ask();
    // By then nothing is tried any more, and only the folder can tell.
    runFor(1.6);

    bus.start();
    const auto back = std::chrono::steady_clock::now();

    ASSERT_TRUE(stateIs(NameState::Owned));
    EXPECT_LT(secondsSince(back), testing_support::busReturnSeconds);
}

TEST_F(BusLife, ListenersHearAgainAfterTheBussReturn) {
    int heard = 0;
    session().addSignal("com.quorrel.jvnprefs", "changed", [&](const seat::BusSignal&) { ++heard; });
    ask();
    ASSERT_TRUE(stateIs(NameState::Owned));
    bus.kill();
    ASSERT_TRUE(stateIs(NameState::Lost));
    bus.start();
    ASSERT_TRUE(stateIs(NameState::Owned));

    const BusPeer peer(bus.address());
    peer.emitSignal("/x", "com.quorrel.jvnprefs", "changed");

    EXPECT_TRUE(runUntil([&] { return heard == 1; }));
}

TEST_F(BusLife, TheLossIsLoggedOnceAndTheReturnToo) {
    ask();
    ASSERT_TRUE(stateIs(NameState::Owned));
    bus.kill();
    ASSERT_TRUE(stateIs(NameState::Lost));
    for (int i = 0; i < 5; ++i) session().emitSignal({"/x", "com.quorrel.jvnprefs", "changed"});
    runFor(0.3); // some attempts fail meanwhile
    bus.start();
    ASSERT_TRUE(stateIs(NameState::Owned));

    EXPECT_EQ(1u, m_log.count(": the bus closed the connection"));
    EXPECT_EQ(1u, m_log.count(": connected"));
    EXPECT_EQ(2u, m_log.all().size()) << ::testing::PrintToString(m_log.all());
}

TEST_F(BusLife, CallsUnderWayFailWhenTheBusDies) {
    const BusPeer silent(bus.address());
    std::vector<std::string> errors;
    session().call({silent.uniqueName(), "/", "com.quorrel.silent", "Call"}, "", {}, 60s,
                   [&](const SessionBus::Reply& r) { errors.push_back(r.error); });
    ASSERT_TRUE(connected());

    bus.kill();

    ASSERT_TRUE(runUntil([&] { return !errors.empty(); }));
    runFor(0.05);
    EXPECT_EQ(1u, errors.size());
}

TEST_F(BusLife, WithoutABusCallsFailAndSignalsAreDropped) {
    bus.kill();
    std::vector<std::string> errors;
    session().emitSignal({"/x", "com.quorrel.jvnprefs", "changed"});
    session().call({"a.b", "/", "a.b", "C"}, "", {}, 60s,
                   [&](const SessionBus::Reply& r) { errors.push_back(r.error); });

    ASSERT_TRUE(runUntil([&] { return !errors.empty(); }));
    EXPECT_EQ(DBUS_ERROR_DISCONNECTED, errors[0]);
    EXPECT_TRUE(session().isFlushed());
    EXPECT_EQ(1u, m_log.all().size());
}

TEST_F(BusLife, ASessionWithoutAnAddressHasNoBus) {
    ::setenv("DBUS_SESSION_BUS_ADDRESS", "", 1);
    ::unsetenv("XDG_RUNTIME_DIR");
    ask();

    EXPECT_TRUE(runUntil([&] { return m_log.count("session bus: this session has none") == 1; }));
}

TEST_F(BusLife, AnAddressThatWouldStartAProgramIsNotTaken) {
    ::setenv("DBUS_SESSION_BUS_ADDRESS", "autolaunch:", 1);
    ask();

    EXPECT_TRUE(runUntil([&] { return m_log.count("not the address of a running bus") == 1; }));
}

TEST_F(BusLife, ABusThatNeverAnswersDelaysNobodyAndIsLogged) {
    bus.stop();
    const testing_support::Heartbeat heartbeat;
    ask();
    session().emitSignal({"/x", "com.quorrel.jvnprefs", "changed"});

    ASSERT_TRUE(runUntil([&] { return m_log.count("takes connections but does not answer") == 1; }, 20));
    EXPECT_TRUE(m_states.empty());
    EXPECT_GT(heartbeat.beats(), 20);
    EXPECT_LT(heartbeat.longestMilliseconds(), 500); // a wait of its own takes longer, other processes less

    bus.resume();
    EXPECT_TRUE(stateIs(NameState::Owned));
}

TEST_F(BusLife, ABusThatTakesNoConnectionsDelaysNobody) {
    bus.kill();
    std::filesystem::remove(bus.socketFile());
    const int listener = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    ::sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strcpy(address.sun_path, bus.socketFile().c_str());
    const auto* const generic = reinterpret_cast<const ::sockaddr*>(&address);
    ASSERT_EQ(0, ::bind(listener, generic, sizeof address));
    ASSERT_EQ(0, ::listen(listener, 0));
    std::vector<int> callers;
    for (int i = 0; i < 3; ++i) {
        callers.push_back(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
        [[maybe_unused]] const int connected = ::connect(callers.back(), generic, sizeof address);
    }

    const testing_support::Heartbeat heartbeat;
    ask();
    runFor(0.5);
    EXPECT_TRUE(runUntil([&] { return heartbeat.beats() > 20; }));
    EXPECT_LT(heartbeat.longestMilliseconds(), 500); // a wait of its own takes longer, other processes less

    for (const int caller : callers) ::close(caller);
    ::close(listener);
    bus.start();
    EXPECT_TRUE(stateIs(NameState::Owned));
}

TEST_F(BusLife, ABusOfAnotherUserIsAbsent) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root can be another user";
    bus.kill();
    std::filesystem::remove(bus.socketFile());
    ::chmod(std::filesystem::path(bus.socketFile()).parent_path().c_str(), 0777);
    int listens[2];
    ASSERT_EQ(0, ::pipe(listens));
    const ::pid_t other = ::fork();
    if (other == 0) {
        if (::setuid(65534) != 0) ::_exit(1);
        const int listener = ::socket(AF_UNIX, SOCK_STREAM, 0);
        ::sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::strcpy(address.sun_path, bus.socketFile().c_str());
        if (::bind(listener, reinterpret_cast<const ::sockaddr*>(&address), sizeof address) != 0) ::_exit(1);
        ::listen(listener, 5);
        [[maybe_unused]] const auto written = ::write(listens[1], "x", 1);
        for (;;) ::pause();
    }
    ::close(listens[1]);
    char byte = 0;
    ASSERT_EQ(1, ::read(listens[0], &byte, 1));
    ::close(listens[0]);
    ask();

    EXPECT_TRUE(runUntil([&] { return m_log.count("it belongs to another user") == 1 || session().isConnected(); }));
    EXPECT_FALSE(session().isConnected());
    ::kill(other, SIGKILL);
    ::waitpid(other, nullptr, 0);
}

TEST_F(BusLife, NothingIsLeftOpenAfterClosing) {
    session().close();
    const auto before = testing_support::openDescriptors();
    for (int i = 0; i < 20; ++i) {
        m_states.clear();
        ask();
        ASSERT_TRUE(stateIs(NameState::Owned));
        session().close();
    }
    EXPECT_EQ(before, testing_support::openDescriptors());
}

TEST_F(BusLife, ABusThatIsAwayIsNotPolled) {
    bus.kill();
    ask();

    // Every turn of the loop asks `done`: without anything to do it is asked at the start and at the end only. The few
    // attempts of the beginning take longer on a busy computer.
    int turns = 0;
    for (int second = 0; second < 30 && (second == 0 || turns > 3); ++second) {
        turns = 0;
        runUntil([&] { return ++turns > 1000; }, 1);
    }
    EXPECT_LE(turns, 3);
    const auto threads = testing_support::runningThreads();
    runFor(0.5);
    EXPECT_EQ(threads, testing_support::runningThreads());
}

} // namespace
