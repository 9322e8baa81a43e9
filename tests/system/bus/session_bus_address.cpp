#include "system/bus/session_bus_address.h"

#include <array>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

using namespace std::chrono_literals;
using seat::BusState;

class Folder {
public:
    Folder() {
        std::string name = (std::filesystem::temp_directory_path() / "bus-XXXXXX").string();
        path = mkdtemp(name.data());
    }
    ~Folder() { std::filesystem::remove_all(path); }
    std::string path;
};

// A listening socket that nobody serves unless the test does.
class Listener {
public:
    Listener(const std::string& path, int backlog) : descriptor(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_un name{};
        name.sun_family = AF_UNIX;
        std::memcpy(name.sun_path, path.data(), path.size());
        const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + path.size());
        EXPECT_EQ(0, bind(descriptor, reinterpret_cast<const sockaddr*>(&name), length));
        EXPECT_EQ(0, listen(descriptor, backlog));
    }
    ~Listener() { close(descriptor); }
    int descriptor;
};

class PrivateBus {
public:
    PrivateBus() {
        std::array<int, 2> ends;
        EXPECT_EQ(0, pipe(ends.data()));
        child = fork();
        if (child == 0) {
            dup2(ends[1], 3);
            execlp("dbus-daemon", "dbus-daemon", "--session", "--nofork", "--print-address=3", nullptr);
            _exit(127);
        }
        close(ends[1]);
        for (char c; read(ends[0], &c, 1) == 1 && c != '\n';) address += c;
        close(ends[0]);
    }
    ~PrivateBus() {
        kill(child, SIGCONT);
        kill(child, SIGTERM);
        waitpid(child, nullptr, 0);
    }
    pid_t child = 0;
    std::string address;
};

// Puts the variables back as they were.
class Environment {
public:
    explicit Environment(std::initializer_list<const char*> names) {
        for (const char* name : names) {
            const char* value = std::getenv(name);
            saved.emplace_back(name, value ? std::optional<std::string>(value) : std::nullopt);
        }
    }
    ~Environment() {
        for (const auto& [name, value] : saved)
            value ? setenv(name.c_str(), value->c_str(), 1) : unsetenv(name.c_str());
    }
    std::vector<std::pair<std::string, std::optional<std::string>>> saved;
};

TEST(SessionBusAddress, ABusThatSaysHelloAnswers) {
    const PrivateBus bus;

    EXPECT_EQ(BusState::Answers, seat::probeBus(bus.address, 5s));
}

TEST(SessionBusAddress, AStoppedBusIsSilentAndCostsNoMoreThanTheTimeout) {
    const PrivateBus bus;
    kill(bus.child, SIGSTOP);

    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(BusState::Silent, seat::probeBus(bus.address, 50ms));
    EXPECT_LT(std::chrono::steady_clock::now() - start, 2s);
}

TEST(SessionBusAddress, ABusWhoseBacklogIsFullIsSilent) {
    const Folder folder;
    const Listener listener(folder.path + "/bus", 0);
    const std::string address = "unix:path=" + folder.path + "/bus";

    EXPECT_EQ(BusState::Silent, seat::probeBus(address, 20ms));
    std::vector<int> callers;
    for (int i = 0; i < 8; ++i) {
        callers.push_back(socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
        sockaddr_un name{};
        name.sun_family = AF_UNIX;
        std::strcpy(name.sun_path, (folder.path + "/bus").c_str());
        (void)connect(callers.back(), reinterpret_cast<const sockaddr*>(&name), sizeof name);
    }
    EXPECT_EQ(BusState::Silent, seat::probeBus(address, 20ms));
    for (const int caller : callers) close(caller);
}

TEST(SessionBusAddress, APeerThatHangsUpOrTalksNonsenseIsAbsent) {
    const Folder folder;
    for (const std::string answer : {"", "REJECTED KERBEROS\r\n", "HTTP/1.1 400 Bad Request\r\n"}) {
        const Listener listener(folder.path + "/bus", 4);
        std::thread peer([&] {
            const int caller = accept(listener.descriptor, nullptr, nullptr);
            char bytes[64];
            (void)!recv(caller, bytes, sizeof bytes, 0);
            (void)!send(caller, answer.data(), answer.size(), MSG_NOSIGNAL);
            close(caller);
        });

        EXPECT_EQ(BusState::Absent, seat::probeBus("unix:path=" + folder.path + "/bus", 5s)) << answer;

        peer.join();
        std::filesystem::remove(folder.path + "/bus");
    }
}

TEST(SessionBusAddress, AddressesThatLeadNowhereAreAbsent) {
    const Folder folder;
    for (const std::string& address :
         {std::string(), std::string("autolaunch:"), "unix:path=" + folder.path + "/none",
          "unix:path=/" + std::string(200, 'x'), std::string("unix:guid=12"), std::string("nonsense")})
        EXPECT_EQ(BusState::Absent, seat::probeBus(address, 5s)) << address;
}

TEST(SessionBusAddress, ANetworksAddressIsHiddenFromWhoeverConnectsLater) {
    const Environment environment{"DBUS_SESSION_BUS_ADDRESS"};
    const PrivateBus bus;
    for (const std::string& address :
         {std::string("tcp:host=localhost,port=1"), "tcp:host=localhost,port=1;" + bus.address}) {
        setenv("DBUS_SESSION_BUS_ADDRESS", address.c_str(), 1);

        EXPECT_EQ(BusState::Absent, seat::settleSessionBus(5s));

        EXPECT_STREQ("unix:path=/nonexistent/session-bus", std::getenv("DBUS_SESSION_BUS_ADDRESS"));
    }
}

TEST(SessionBusAddress, TheFirstOfSeveralThatAnswersCounts) {
    const PrivateBus bus;

    EXPECT_EQ(BusState::Answers, seat::probeBus("unix:path=/nonexistent/bus;" + bus.address, 5s));
}

TEST(SessionBusAddress, EscapedPathsAreUnderstood) {
    const Folder folder;
    const Listener listener(folder.path + "/a b", 4);

    EXPECT_EQ(BusState::Silent, seat::probeBus("unix:path=" + folder.path + "/a%20b,guid=00", 20ms));
}

TEST(SessionBusAddress, ASilentBusIsHiddenFromWhoeverConnectsLaterButRemembered) {
    const Environment environment{"DBUS_SESSION_BUS_ADDRESS", "XDG_RUNTIME_DIR"};
    const Folder folder;
    const Listener listener(folder.path + "/bus", 4);
    unsetenv("DBUS_SESSION_BUS_ADDRESS");
    setenv("XDG_RUNTIME_DIR", folder.path.c_str(), 1);

    EXPECT_EQ(BusState::Silent, seat::settleSessionBus(20ms));

    EXPECT_EQ("unix:path=" + folder.path + "/bus", seat::sessionBusAddress());
    EXPECT_STREQ("unix:path=/nonexistent/session-bus", std::getenv("DBUS_SESSION_BUS_ADDRESS"));
}

TEST(SessionBusAddress, WithoutABusTheEnvironmentStillHasAnAddressSoThatNobodyStartsOne) {
    const Environment environment{"DBUS_SESSION_BUS_ADDRESS", "XDG_RUNTIME_DIR"};
    unsetenv("DBUS_SESSION_BUS_ADDRESS");
    unsetenv("XDG_RUNTIME_DIR");

    EXPECT_EQ(BusState::Absent, seat::settleSessionBus(1s));

    EXPECT_EQ("", seat::sessionBusAddress());
    EXPECT_STREQ("unix:path=/nonexistent/session-bus", std::getenv("DBUS_SESSION_BUS_ADDRESS"));
}

TEST(SessionBusAddress, ABusThatAnswersKeepsItsAddress) {
    const Environment environment{"DBUS_SESSION_BUS_ADDRESS"};
    const PrivateBus bus;
    setenv("DBUS_SESSION_BUS_ADDRESS", bus.address.c_str(), 1);

    EXPECT_EQ(BusState::Answers, seat::settleSessionBus(5s));

    EXPECT_EQ(bus.address, std::getenv("DBUS_SESSION_BUS_ADDRESS"));
}

} // namespace
