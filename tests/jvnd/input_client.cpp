#include "services/jvnd/InputClient.h"

#include "services/common/log.h"
#include "tests/jvnd/FakeBluetooth.h"
#include "tests/support/HeldClock.h"
#include "tests/support/TemporaryFolder.h"

#include <cstring>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

using namespace jvnd;
using namespace std::chrono_literals;
using testing_support::firstAddress;
using testing_support::secondAddress;

namespace {

// jvninputd's end of the socket.
class FakeInputd {
public:
    explicit FakeInputd(const std::string& path) {
        ::sockaddr_un address{};
        address.sun_family = AF_UNIX;
        path.copy(address.sun_path, sizeof address.sun_path - 1);
        ::unlink(path.c_str());
        m_listener.reset(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
        EXPECT_EQ(::bind(m_listener.get(), reinterpret_cast<const ::sockaddr*>(&address), sizeof address), 0);
        EXPECT_EQ(::listen(m_listener.get(), 8), 0);
    }
    bool accept() {
        m_client.reset(::accept4(m_listener.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
        return bool(m_client);
    }
    // "hello 1", "keyboard 1", "light 1 00fe00": the next message; empty when none has come.
    std::string next() {
        char message[input::maximumMessageSize];
        const auto got = ::recv(m_client.get(), message, sizeof message, MSG_DONTWAIT);
        if (got <= 0) return got == 0 ? "closed" : "";
        const auto size = static_cast<std::size_t>(got);
        if (const auto hello = input::messageFrom<input::Hello>(message, size))
            return "hello " + std::to_string(static_cast<int>(hello->role));
        if (const auto settings = input::messageFrom<input::Settings>(message, size))
            return "keyboard " + std::to_string(settings->keyboardPlays);
        if (const auto light = input::messageFrom<input::Light>(message, size))
            return "light " + std::to_string(light->green);
        return "nonsense";
    }
    std::string all() {
        std::string text;
        for (auto message = next(); !message.empty() && message != "closed"; message = next()) text += message + ", ";
        return text;
    }
    template <class Message> void send(const Message& message) {
        EXPECT_EQ(::send(m_client.get(), &message, sizeof message, MSG_NOSIGNAL), static_cast<ssize_t>(sizeof message));
    }
    void controller(const bluetooth::Address& address, bool present, input::Bus bus = input::Bus::bluetooth) {
        auto message = input::makeMessage<input::Controller>();
        std::ranges::copy(address.bytes, message.address);
        message.bus = bus;
        message.present = present;
        send(message);
    }
    void takeIt() { send(input::makeMessage<input::State>()); }
    void hangUp() { m_client.reset(); }

private:
    seat::Descriptor m_listener;
    seat::Descriptor m_client;
};

class InputClientTest : public ::testing::Test {
protected:
    InputClientTest() {
        services::setLogSink([this](std::string_view line) { log += std::string(line) + "\n"; });
        client.onChanged([this] { ++changes; });
    }
    ~InputClientTest() override { services::setLogSink({}); }

    void letRun() {
        loop.runUntil([] { return false; }, 5ms);
    }
    static input::Settings keyboard(std::uint8_t plays) {
        auto message = input::makeMessage<input::Settings>();
        message.keyboardPlays = plays;
        return message;
    }
    static input::Light light(std::uint8_t green) {
        auto message = input::makeMessage<input::Light>();
        message.green = green;
        return message;
    }

    std::string log;
    testing_support::TemporaryFolder folder;
    testing_support::HeldClock clock;
    services::EventLoop loop{clock};
    InputClient client{loop, folder.file("socket")};
    int changes = 0;
};

TEST_F(InputClientTest, NothingIsConnectedUntilItIsWanted) {
    FakeInputd inputd(folder.file("socket"));
    client.setKeyboard(keyboard(1));
    EXPECT_FALSE(inputd.accept());
    EXPECT_FALSE(client.controllers());

    client.setWanted(true);

    EXPECT_TRUE(inputd.accept());
    client.setWanted(false);
    inputd.all();
    EXPECT_EQ(inputd.next(), "closed");
}

TEST_F(InputClientTest, ItKnowsWhetherKeyboardsCanPlay) {
    using daemon_status::InputService;
    EXPECT_EQ(client.keyboards().service, InputService::unknown);
    client.setWanted(true);
    letRun();
    EXPECT_EQ(client.keyboards().service, InputService::unreachable);
    EXPECT_EQ(changes, 1);

    FakeInputd inputd(folder.file("socket"));
    letRun();
    clock.advance(loop, 1s);
    letRun();
    ASSERT_TRUE(inputd.accept());
    auto state = input::makeMessage<input::State>();
    state.readiness = input::Readiness::waitingForGame;
    state.keyboards = 2;
    changes = 0;
    inputd.send(state);
    letRun();
    EXPECT_EQ(client.keyboards(), (Devices::Keyboards{InputService::connected, input::Readiness::waitingForGame, 2}));
    EXPECT_EQ(changes, 1);
    state.gameListens = 1;
    inputd.send(state);
    letRun();
    EXPECT_EQ(changes, 1) << "nothing of it is another one";

    inputd.hangUp();
    letRun();
    EXPECT_EQ(client.keyboards().service, InputService::unreachable);
    client.setWanted(false);
    letRun();
    EXPECT_EQ(client.keyboards().service, InputService::unknown);
}

TEST_F(InputClientTest, ItGovernsAndSaysWhatHolds) {
    FakeInputd inputd(folder.file("socket"));
    client.setKeyboard(keyboard(1));
    client.setLight(light(7));
    client.setWanted(true);
    ASSERT_TRUE(inputd.accept());
    EXPECT_EQ(inputd.all(), "hello 1, keyboard 1, light 7, ");

    client.setKeyboard(keyboard(1));
    client.setLight(light(7));
    EXPECT_EQ(inputd.all(), "") << "nothing new";
    client.setKeyboard(keyboard(0));
    EXPECT_EQ(inputd.all(), "keyboard 0, ");
}

TEST_F(InputClientTest, OfManyColorsAtOnceTheFirstAndTheLastArrive) {
    FakeInputd inputd(folder.file("socket"));
    client.setWanted(true);
    ASSERT_TRUE(inputd.accept());
    inputd.all();
    clock.advance(loop, 1s);
    for (std::uint8_t green = 1; green <= 200; ++green) client.setLight(light(green));
    EXPECT_EQ(inputd.all(), "light 1, ");

    clock.advance(loop, 20ms);

    EXPECT_EQ(inputd.all(), "light 200, ");
    clock.advance(loop, 1s);
    EXPECT_EQ(inputd.all(), "");
}

TEST_F(InputClientTest, ControllersComeAndGo) {
    FakeInputd inputd(folder.file("socket"));
    client.setWanted(true);
    ASSERT_TRUE(inputd.accept());
    inputd.controller(firstAddress, true);
    inputd.controller(firstAddress, true);
    inputd.controller(secondAddress, true, input::Bus::usb);
    letRun();
    ASSERT_TRUE(client.controllers());
    EXPECT_EQ(*client.controllers(), std::vector{firstAddress}) << "those on a cable have not called";

    inputd.controller(firstAddress, false);
    letRun();

    EXPECT_TRUE(client.controllers()->empty());
    EXPECT_EQ(changes, 3);
}

TEST_F(InputClientTest, OneThatHasGoneIsConnectedAgainAndToldEverythingAnew) {
    FakeInputd inputd(folder.file("socket"));
    client.setKeyboard(keyboard(1));
    client.setWanted(true);
    ASSERT_TRUE(inputd.accept());
    inputd.takeIt();
    inputd.controller(firstAddress, true);
    letRun();
    inputd.hangUp();
    letRun();
    EXPECT_FALSE(client.controllers()) << "nobody can say any more";

    clock.advance(loop, 100ms);

    ASSERT_TRUE(inputd.accept());
    EXPECT_EQ(inputd.all(), "hello 1, keyboard 1, light 0, ");
}

TEST_F(InputClientTest, OneThatRefusesIsAskedEverMoreRarely) {
    FakeInputd inputd(folder.file("socket"));
    client.setWanted(true);
    auto refused = input::makeMessage<input::Refused>();
    refused.reason = input::RefusalReason::roleTaken;
    int attempts = 0;
    for (int second = 0; second < 600; ++second) {
        while (inputd.accept()) {
            ++attempts;
            inputd.send(refused);
            inputd.hangUp();
            loop.runUntil([&] { return !client.controllers(); }, 100ms);
        }
        clock.advance(loop, 1s);
    }
    EXPECT_GE(attempts, 10);
    EXPECT_LE(attempts, 25);
    EXPECT_EQ(log.find("the connection has ended"), std::string::npos);
    EXPECT_NE(log.find("another daemon of this user is there"), std::string::npos);
}

TEST_F(InputClientTest, OneThatIsNotThereIsWaitedForWithoutATimer) {
    client.setWanted(true);
    EXPECT_FALSE(loop.nextTimer());
    EXPECT_FALSE(client.controllers());

    FakeInputd inputd(folder.file("socket"));
    loop.runUntil([&] { return loop.nextTimer().has_value(); });
    clock.advance(loop, 100ms);

    EXPECT_TRUE(inputd.accept());
}

TEST_F(InputClientTest, OneThatDoesNotReadGetsTheLatestWhenItDoes) {
    FakeInputd inputd(folder.file("socket"));
    client.setWanted(true);
    ASSERT_TRUE(inputd.accept());
    for (int i = 0; i < 5000; ++i) client.setKeyboard(keyboard(static_cast<std::uint8_t>(i % 2)));
    client.setLight(light(9));
    clock.advance(loop, 1s);

    std::string last;
    loop.runUntil([&] {
        for (auto message = inputd.next(); !message.empty(); message = inputd.next()) last = message;
        return last == "light 9";
    });
    EXPECT_EQ(last, "light 9");
}

TEST_F(InputClientTest, MessagesThatAreNoneAreNotHeard) {
    FakeInputd inputd(folder.file("socket"));
    client.setWanted(true);
    ASSERT_TRUE(inputd.accept());
    inputd.send(std::array<char, 3>{});
    inputd.send(std::array<char, 16>{});
    inputd.send(std::array<char, 5000>{});
    auto later = input::makeMessage<input::Controller>();
    later.header.version = 99;
    inputd.send(later);
    letRun();
    EXPECT_EQ(changes, 0);
    EXPECT_TRUE(client.controllers());
}

TEST_F(InputClientTest, WhoeverHearsOfAChangeMayWantItNoMore) {
    FakeInputd inputd(folder.file("socket"));
    client.setWanted(true);
    ASSERT_TRUE(inputd.accept());
    client.onChanged([this] { client.setWanted(false); });
    inputd.controller(firstAddress, true);
    letRun();
    inputd.all();
    EXPECT_EQ(inputd.next(), "closed");
    EXPECT_FALSE(loop.nextTimer());
}

} // namespace
