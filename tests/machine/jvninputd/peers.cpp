#include "tests/machine/jvninputd/PlayingTest.h"
#include "tests/machine/support/LoginSession.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <set>
#include <sstream>
#include <sys/socket.h>
#include <system_error>
#include <unistd.h>

namespace machine {
namespace {

// While one user plays others do to the socket whatever they like.
class Peers : public PlayingTest {
protected:
    void SetUp() override {
        startGame();
        settle(service.socket());
        descriptors = service.descriptors();
    }
    // Whatever was done: who plays does not notice, and nothing of it is left.
    void TearDown() override {
        if (HasFatalFailure()) return;
        keyboard.tap(KEY_W);
        EXPECT_EQ(game->nextText(), "EV_ABS 17 -1") << service.log();
        EXPECT_EQ(game->nextText(), "EV_ABS 17 0");
        EXPECT_EQ(governor.state().readiness, input::Readiness::playing);
        EXPECT_TRUE(waitUntil([this] { return service.descriptors() <= descriptors; })) << service.descriptors();
        EXPECT_LE(service.privateMemory(), 2048)
            << run({"cat", "/proc/" + std::to_string(service.process()) + "/smaps_rollup"}).output;
        expectNoLineTwice(service.log());
    }
    static void expectNoLineTwice(const std::string& log) {
        std::istringstream lines(log);
        std::set<std::string> seen;
        for (std::string line; std::getline(lines, line);) EXPECT_TRUE(seen.insert(line).second) << log;
    }
    // The socket says who it is by whom the process is when it connects.
    InputClient connectAs(uid_t user) {
        if (::seteuid(user) != 0) throw std::system_error(errno, std::generic_category(), "seteuid");
        struct Back {
            ~Back() { (void)!::seteuid(kRoot); }
        } back;
        return InputClient(service.socket());
    }
    // So many that stay open, each of whom has said that it listens.
    std::vector<InputClient> crowd(uid_t user, int count) {
        std::vector<InputClient> all;
        for (int i = 0; i < count; ++i) {
            all.push_back(connectAs(user));
            all.back().hello(input::Role::observe);
        }
        return all;
    }
    static int refused(std::vector<InputClient>& all, input::RefusalReason reason) {
        return static_cast<int>(
            std::ranges::count_if(all, [reason](InputClient& client) { return client.refusal() == reason; }));
    }

    long descriptors = 0;
};

TEST_F(Peers, AThousandConnectionsOfAUserWithoutASessionAreAllRefused) {
    auto all = crowd(kBert, 1000);
    EXPECT_LE(service.descriptors(), 100);
    EXPECT_EQ(refused(all, input::RefusalReason::notPermitted), 1000);
}

TEST_F(Peers, AThousandConnectionsOfAUserWhoMayAreRefusedButForTwo) {
    auto all = crowd(kRoot, 2);
    ASSERT_TRUE(all[1].waitFor(input::Readiness::playing));
    auto more = crowd(kRoot, 1000);
    EXPECT_LE(service.descriptors(), 100);
    EXPECT_EQ(refused(more, input::RefusalReason::roleTaken) + refused(more, input::RefusalReason::busy), 1000);
    EXPECT_TRUE(all[0].waitFor(input::Readiness::playing));
}

TEST_F(Peers, AThousandThatSayNothingAreKeptOffAndTheRestIsClosedWhenItStaysSilent) {
    std::vector<InputClient> silent;
    for (int i = 0; i < 1000; ++i) silent.push_back(connectAs(kRoot));
    int closed = 0;
    for (InputClient& client : silent) closed += client.ended();
    EXPECT_EQ(closed, 1000);
    EXPECT_LE(service.descriptors(), 100);
}

TEST_F(Peers, AnotherVersionIsRefusedEachTime) {
    for (int i = 0; i < 50; ++i) {
        InputClient client = connectAs(kRoot);
        auto hello = input::makeMessage<input::Hello>();
        hello.header.version = 2;
        client.send(&hello, sizeof hello);
        EXPECT_EQ(client.refusal(), input::RefusalReason::version);
    }
}

TEST_F(Peers, MessagesCutOrTooLongAreRefused) {
    std::array<std::byte, 64 * 1024> large{};
    auto settings = input::makeMessage<input::Settings>();
    std::memcpy(large.data(), &settings, sizeof settings);
    for (const std::size_t size :
         {std::size_t{1}, std::size_t{3}, sizeof settings - 1, sizeof settings + 1, large.size()}) {
        InputClient client(service.socket(), input::Role::tryOut);
        ASSERT_TRUE(client.waitFor(input::Readiness::playing));
        client.send(large.data(), size);
        EXPECT_EQ(client.refusal(), input::RefusalReason::malformed) << size;
    }
}

TEST_F(Peers, WhoSendsWithoutEndIsRefused) {
    InputClient client(service.socket(), input::Role::tryOut);
    ASSERT_TRUE(client.waitFor(input::Readiness::playing));
    auto settings = input::makeMessage<input::Settings>();
    for (int i = 0; i < 100'000 && client.trySend(settings); ++i) settings.bindings[0].usage ^= 1;

    EXPECT_EQ(client.refusal(), input::RefusalReason::tooManyMessages);
    startGame(); // who governs counts again
}

TEST_F(Peers, ALockedSessionIsLetInAndWaits) {
    LoginSession& anna = LoginSession::ofAnna();
    anna.lock();
    descriptors += 2; // the message bus tells of the lock
    InputClient client = connectAs(kAnna);
    client.hello(input::Role::govern);
    client.play(defaultBindings());
    EXPECT_TRUE(client.waitFor(input::Readiness::locked));
    EXPECT_EQ(governor.state().readiness, input::Readiness::playing);
    client.close();
}

} // namespace
} // namespace machine
