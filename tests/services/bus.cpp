#include "services/common/Bus.h"

#include "services/common/log.h"
#include "tests/support/PrivateBus.h"

#include <array>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/inotify.h>
#include <systemd/sd-event.h>
#include <unistd.h>
#include <vector>

using namespace std::chrono_literals;
using services::Bus;
using testing_support::PrivateBus;

namespace {

class BusTest : public testing::Test {
protected:
    BusTest() {
        services::setLogSink([this](std::string_view line) { log.emplace_back(line); });
    }
    ~BusTest() override { services::setLogSink({}); }

    services::Message question(const Bus& asked) const {
        return asked.method("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "GetId");
    }
    void runFor(std::chrono::milliseconds time) {
        loop.runUntil([] { return false; }, time);
    }
    // Times that the loop has come round.
    std::uint64_t rounds() const {
        std::uint64_t count = 0;
        ::sd_event_get_iteration(loop.raw(), &count);
        return count;
    }

    // Deals with all that is ready; false when there is always more.
    bool comeToRest() const {
        int most = 100;
        while (most > 0 && ::sd_event_run(loop.raw(), 0) > 0) --most;
        return most > 0;
    }

    std::vector<std::string> log;
    services::EventLoop loop;
};

// What happens in the folders above a file, for which a connection that waits for that file is woken, too: other
// programs make files of their own there.
class EventsAbove {
public:
    explicit EventsAbove(const std::filesystem::path& file) : m_watch(::inotify_init1(IN_CLOEXEC | IN_NONBLOCK)) {
        constexpr unsigned kinds = IN_ATTRIB | IN_MOVED_TO | IN_CREATE | IN_DELETE_SELF | IN_MOVE_SELF;
        for (auto folder = file.parent_path();; folder = folder.parent_path()) {
            ::inotify_add_watch(m_watch, folder.c_str(), kinds);
            if (folder == folder.root_path()) break;
        }
    }
    ~EventsAbove() { ::close(m_watch); }
    EventsAbove(const EventsAbove&) = delete;
    EventsAbove& operator=(const EventsAbove&) = delete;

    std::uint64_t count() {
        alignas(::inotify_event) std::array<char, 4096> buffer;
        for (::ssize_t size = 0; (size = ::read(m_watch, buffer.data(), buffer.size())) > 0;)
            for (const char* at = buffer.data(); at < buffer.data() + size; ++m_count)
                at += sizeof(::inotify_event) + reinterpret_cast<const ::inotify_event*>(at)->len;
        return m_count;
    }

private:
    int m_watch;
    std::uint64_t m_count = 0;
};

TEST_F(BusTest, IsUpWhenTheBusHasTakenItAndDownWhenItIsGone) {
    PrivateBus daemon;
    std::string told;
    const Bus bus(
        loop, Bus::Which::Session, [&] { told += 'u'; }, [&] { told += 'd'; });
    EXPECT_EQ(told, "");

    EXPECT_TRUE(loop.runUntil([&] { return told == "u" && bus.isUp(); }));
    daemon.kill();
    EXPECT_TRUE(loop.runUntil([&] { return told == "ud" && !bus.isUp(); }));
    daemon.start();
    EXPECT_TRUE(loop.runUntil([&] { return told == "udu" && bus.isUp(); }));
}

TEST_F(BusTest, OnlyASocketOfThisComputersIsConnectedTo) {
    for (const char* const address : {"tcp:host=localhost,port=1", "unixexec:path=/bin/true",
                                      "autolaunch:", "unix:path=/nowhere;tcp:host=localhost,port=1"}) {
        const PrivateBus daemon(PrivateBus::Start::Later);
        ::setenv("DBUS_SESSION_BUS_ADDRESS", address, 1);
        log.clear();

        const Bus bus(loop, Bus::Which::Session, {});

        EXPECT_EQ(
            log, std::vector<std::string>{"session bus: " + std::string(address) + " is no socket of this computer's"});
        EXPECT_EQ(bus.raw(), nullptr);
    }
}

TEST_F(BusTest, ABusThatIsNotThereCostsNothing) {
    const PrivateBus daemon(PrivateBus::Start::Later);
    EventsAbove others(daemon.socketFile());
    const Bus bus(loop, Bus::Which::Session, {});
    ASSERT_TRUE(comeToRest());
    const auto before = rounds();
    runFor(500ms);

    EXPECT_LE(rounds() - before, 2 + others.count()) << "the waiting of this test itself, and what others did";
    EXPECT_FALSE(loop.nextTimer());
    EXPECT_FALSE(bus.isUp());
}

TEST_F(BusTest, AnEnvironmentWithoutABusIsSettledWithOneLine) {
    const PrivateBus daemon; // takes care of the variable
    ::unsetenv("DBUS_SESSION_BUS_ADDRESS");
    const char* const folder = std::getenv("XDG_RUNTIME_DIR");
    const std::string before = folder ? folder : "";
    ::unsetenv("XDG_RUNTIME_DIR");
    Bus bus(loop, Bus::Which::Session, {});
    std::string error;
    const auto call = bus.call(question(bus), [&](const Bus::Reply& reply) { error = reply.error; });

    EXPECT_TRUE(loop.runUntil([&] { return !error.empty(); }));

    EXPECT_EQ(log.size(), 1U);
    EXPECT_FALSE(loop.nextTimer());
    if (folder) ::setenv("XDG_RUNTIME_DIR", before.c_str(), 1);
}

TEST_F(BusTest, ACallIsAnsweredOnceAndLaterThanItWasMade) {
    const PrivateBus daemon;
    Bus bus(loop, Bus::Which::Session, {});
    int answers = 0;
    const auto call = bus.call(question(bus), [&](const Bus::Reply& reply) {
        ++answers;
        EXPECT_TRUE(reply.message);
    });
    EXPECT_EQ(answers, 0);

    EXPECT_TRUE(loop.runUntil([&] { return answers > 0; }));
    runFor(20ms);

    EXPECT_EQ(answers, 1);
}

TEST_F(BusTest, ACallWhoseHandleHasGoneIsNotHeardOf) {
    const PrivateBus daemon;
    Bus bus(loop, Bus::Which::Session, {});
    auto call = bus.call(question(bus), [](const Bus::Reply&) { ADD_FAILURE() << "heard"; });
    call.reset();
    bool isAnswered = false;
    const auto next = bus.call(question(bus), [&](const Bus::Reply&) { isAnswered = true; });

    EXPECT_TRUE(loop.runUntil([&] { return isAnswered; }));
}

TEST_F(BusTest, IsQuietWhenAllThatIsWantedIsAnswered) {
    const PrivateBus daemon;
    Bus bus(loop, Bus::Which::Session, {});
    bool isQuiet = false;
    bool isAnswered = false;
    const auto call = bus.call(question(bus), [&](const Bus::Reply&) {
        isAnswered = true;
        EXPECT_FALSE(isQuiet);
    });
    bus.send(question(bus));

    bus.whenQuiet([&] { isQuiet = true; });

    EXPECT_TRUE(loop.runUntil([&] { return isQuiet; }));
    EXPECT_TRUE(isAnswered);
}

TEST_F(BusTest, ACallThatWaitsFailsWhenTheBusDies) {
    PrivateBus daemon;
    Bus bus(loop, Bus::Which::Session, {});
    ASSERT_TRUE(loop.runUntil([&] { return bus.isUp(); }));
    daemon.stop();
    std::string error;
    const auto call = bus.call(question(bus), [&](const Bus::Reply& reply) { error = reply.error; });
    runFor(20ms);

    daemon.kill();

    EXPECT_TRUE(loop.runUntil([&] { return !error.empty(); }));
}

TEST_F(BusTest, GoesAwayInTheMiddleOfEverything) {
    PrivateBus daemon;
    for (const bool isStopped : {false, true}) {
        if (isStopped) daemon.stop();
        Bus bus(loop, Bus::Which::Session, {});
        const auto call = bus.call(question(bus), [](const Bus::Reply&) {});
        bus.send(question(bus));
        bus.whenQuiet([] {});
        runFor(5ms);
    }
    daemon.resume();
}

} // namespace
