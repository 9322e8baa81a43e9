// Asking the daemon, beside a bare client that makes the same system calls of the same daemon; the daemon beside a bare
// server that the same client asks; and what ten thousand of the page's exchanges leave in memory. Its last line is for
// other programs:
//   exchange ratio=<ours to bare> bare_us=.. ours_us=.. server_us=.. daemon_us=.. hop_us=.. page_us=..
//   rss_growth_kib=..

#include "daemonlink/ControlConnection.h"
#include "daemonlink/exchanges.h"
#include "platform/dispatch.h"
#include "platform/foundation/NSData.h"
#include "platform/foundation/NSNumber.h"
#include "settings/JoyvaneListController.h"
#include "system/files/Descriptor.h"
#include "system/run_loop/PollLoop.h"
#include "tests/support/LoggedLines.h"
#include "tests/support/SettingsHost.h"

#include <QGuiApplication>

#include <algorithm>
#include <array>
#include <benchmark/benchmark.h>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <map>
#include <sched.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

double microseconds(Clock::duration duration) { return std::chrono::duration<double, std::micro>(duration).count(); }

constexpr std::array<unsigned char, 6> address{0x00, 0xAA, 0x01, 0x01, 0x00, 0x01};

// The daemon of a root, as a process of its own, with a simulated controller that is connected.
class DaemonProcess {
public:
    explicit DaemonProcess(testing_support::SettingsHost& app) {
        app.writePreferences(testing_support::dictionary({{"controller_type", NSNumber::numberWithInteger(1)},
                                                          {"connection_mode", NSNumber::numberWithInteger(1)},
                                                          {"PS4BluetoothAddress", NSData::dataWithBytes(address)}}));
        const std::filesystem::path world = app.root() + "/var/joyvane/simulated-controllers";
        std::filesystem::create_directories(world.parent_path());
        std::ofstream(world) << "bluetooth on\ncontroller 00:AA:01:01:00:01 type=1 paired trusted connected : Pad\n";

        int ends[2];
        if (::pipe2(ends, O_CLOEXEC) != 0) return;
        m_input.reset(ends[1]);
        const seat::Descriptor theirs(ends[0]);
        posix_spawn_file_actions_t actions;
        ::posix_spawn_file_actions_init(&actions);
        ::posix_spawn_file_actions_adddup2(&actions, theirs.get(), STDIN_FILENO);
        std::string words[] = {JVND_PROGRAM, "--simulate", "--root", app.root()};
        char* arguments[] = {words[0].data(), words[1].data(), words[2].data(), words[3].data(), nullptr};
        if (::posix_spawn(&m_process, JVND_PROGRAM, &actions, nullptr, arguments, environ) != 0) m_process = 0;
        ::posix_spawn_file_actions_destroy(&actions);
        for (int i = 0; i < 1000 && !ControlConnection::open(); ++i) ::usleep(5000);
    }
    ~DaemonProcess() {
        if (m_process <= 0) return;
        ::kill(m_process, SIGTERM);
        ::waitpid(m_process, nullptr, 0);
    }
    DaemonProcess(const DaemonProcess&) = delete;
    DaemonProcess& operator=(const DaemonProcess&) = delete;

    ::pid_t process() const { return m_process; }

private:
    seat::Descriptor m_input;
    ::pid_t m_process = 0;
};

// What anybody who writes a server by hand does: it takes a connection, reads a frame, answers it, and closes.
class BareServer {
public:
    explicit BareServer(const ::sockaddr_un& place) {
        const seat::Descriptor listener(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
        if (::bind(listener.get(), reinterpret_cast<const ::sockaddr*>(&place), sizeof place) != 0 ||
            ::listen(listener.get(), 64) != 0)
            return;
        m_process = ::fork();
        if (m_process != 0) return;
        for (;;) {
            const int caller = ::accept4(listener.get(), nullptr, nullptr, SOCK_CLOEXEC);
            unsigned char frame[12];
            if (::recv(caller, frame, sizeof frame, MSG_WAITALL) == 12)
                ::send(caller, frame, sizeof frame, MSG_NOSIGNAL);
            ::close(caller);
        }
    }
    ~BareServer() {
        if (m_process <= 0) return;
        ::kill(m_process, SIGKILL);
        ::waitpid(m_process, nullptr, 0);
    }
    BareServer(const BareServer&) = delete;
    BareServer& operator=(const BareServer&) = delete;

    ::pid_t process() const { return m_process; }

private:
    ::pid_t m_process = 0;
};

struct Stage {
    testing_support::LoggedLines quiet;
    testing_support::SettingsHost app;
    DaemonProcess daemon{app};
};

::sockaddr_un placeAt(const std::string& path) {
    ::sockaddr_un place{};
    place.sun_family = AF_UNIX;
    path.copy(place.sun_path, sizeof place.sun_path - 1);
    return place;
}

// What anybody who writes a client by hand does.
bool askBare(const ::sockaddr_un& place) {
    const int descriptor = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    unsigned char frame[12] = {5};
    const ::timeval second{1, 0};
    const bool answered = ::connect(descriptor, reinterpret_cast<const ::sockaddr*>(&place), sizeof place) == 0 &&
                          ::setsockopt(descriptor, SOL_SOCKET, SO_RCVTIMEO, &second, sizeof second) == 0 &&
                          ::send(descriptor, frame, sizeof frame, MSG_NOSIGNAL) == 12 &&
                          ::recv(descriptor, frame, sizeof frame, MSG_WAITALL) == 12;
    ::close(descriptor);
    return answered;
}

bool askOurs() {
    const auto connection = ControlConnection::open();
    JVNControlFrame frame;
    return connection && daemonlink::setReplyTimeout(connection.descriptor(), daemonlink::queryReplySeconds) &&
           daemonlink::queryConnection(connection.descriptor(), frame) != daemonlink::QueryReply::NotConnected;
}

double median(std::vector<double>& values) {
    if (values.empty()) return 0;
    std::ranges::nth_element(values, values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2));
    return values[values.size() / 2];
}

// What the last line says.
std::map<std::string, double>& results() {
    static std::map<std::string, double> all;
    return all;
}

// By turns, so that both meet the same machine.
void oursBesideBare(benchmark::State& state) {
    Stage stage;
    const auto place = placeAt(stage.app.root() + "/Library/Caches/jvncontrol.sock");
    std::vector<double> bare, ours;
    for ([[maybe_unused]] auto _ : state) {
        for (int i = 0; i < 500; ++i) {
            const auto start = Clock::now();
            const bool bareWorked = askBare(place);
            const auto between = Clock::now();
            const bool oursWorked = askOurs();
            const auto end = Clock::now();
            if (!bareWorked || !oursWorked) return state.SkipWithError("the daemon does not answer");
            bare.push_back(microseconds(between - start));
            ours.push_back(microseconds(end - between));
        }
    }
    results()["bare_us"] = state.counters["bare_us"] = median(bare);
    results()["ours_us"] = state.counters["ours_us"] = median(ours);
    results()["ratio"] = state.counters["ratio"] = median(ours) / median(bare);
}
BENCHMARK(oursBesideBare)->Unit(benchmark::kMillisecond);

// Where a process runs, 0 for this one. Two that wake each other on one processor take half the time of two on two, and
// it would be chance which of them does.
enum class Processor { First, Last };
void keepOn(::pid_t process, Processor which) {
    const auto count = ::sysconf(_SC_NPROCESSORS_ONLN);
    ::cpu_set_t set;
    CPU_ZERO(&set);
    CPU_SET(static_cast<std::size_t>(which == Processor::First || count < 1 ? 0 : count - 1), &set);
    ::sched_setaffinity(process, sizeof set, &set);
}

// The same client asks the daemon and a bare server, by turns.
void daemonBesideBare(benchmark::State& state) {
    Stage stage;
    const auto daemon = placeAt(stage.app.root() + "/Library/Caches/jvncontrol.sock");
    const auto bare = placeAt(stage.app.root() + "/bare.sock");
    const BareServer server(bare);
    ::cpu_set_t before;
    ::sched_getaffinity(0, sizeof before, &before);
    keepOn(0, Processor::First);
    keepOn(stage.daemon.process(), Processor::Last);
    keepOn(server.process(), Processor::Last);
    std::vector<double> bares, daemons;
    for ([[maybe_unused]] auto _ : state) {
        for (int i = 0; i < 500; ++i) {
            // Ten at a time, so that what each does after its answer is in its own way.
            const bool isBare = i / 10 % 2 == 0;
            const auto start = Clock::now();
            if (!askBare(isBare ? bare : daemon)) return state.SkipWithError("one does not answer");
            (isBare ? bares : daemons).push_back(microseconds(Clock::now() - start));
        }
    }
    ::sched_setaffinity(0, sizeof before, &before);
    results()["server_us"] = state.counters["server_us"] = median(bares);
    results()["daemon_us"] = state.counters["daemon_us"] = median(daemons);
}
BENCHMARK(daemonBesideBare)->Unit(benchmark::kMillisecond);

// To a worker and back to the main queue, with nothing done there: what the page pays for never waiting.
void hop(benchmark::State& state) {
    seat::PollLoop loop;
    std::vector<double> hops;
    for ([[maybe_unused]] auto _ : state) {
        const auto start = Clock::now();
        bool done = false;
        dispatch_async(dispatch_get_global_queue(DISPATCH_QUEUE_PRIORITY_DEFAULT, 0),
                       [&done] { dispatch_async(dispatch_get_main_queue(), [&done] { done = true; }); });
        loop.runUntil([&done] { return done; }, 10);
        hops.push_back(microseconds(Clock::now() - start));
    }
    results()["hop_us"] = state.counters["hop_us"] = median(hops);
}
BENCHMARK(hop)->Unit(benchmark::kMicrosecond)->MinTime(0.2);

double residentKiB() {
    std::ifstream file("/proc/self/statm");
    double total = 0;
    double resident = 0;
    file >> total >> resident;
    return resident * static_cast<double>(::sysconf(_SC_PAGESIZE)) / 1024;
}

// The page's own, each with the reload of its rows that ends it.
void tenThousandOfThePage(benchmark::State& state) {
    Stage stage;
    const auto page = JoyvaneListController::alloc()->init();
    stage.app.open(page);
    const auto enabled = [&] {
        const auto cell = page->connectSpecifier()->propertyForKey("cellObject").object<PSTableCell>();
        return !cell || cell->isUserInteractionEnabled();
    };
    const auto ask = [&] {
        page->queryControllerConnected();
        const bool isDone = stage.app.loop().runUntil(enabled, 10);
        stage.app.scene().prepareFrame();
        return isDone;
    };
    std::vector<double> times(10'000); // in memory before it is measured
    for ([[maybe_unused]] auto _ : state) {
        for (int i = 0; i < 1000; ++i)
            if (!ask()) return state.SkipWithError("the daemon does not answer");
        const double before = residentKiB();
        for (double& time : times) {
            const auto start = Clock::now();
            if (!ask()) return state.SkipWithError("the daemon does not answer");
            time = microseconds(Clock::now() - start);
        }
        results()["rss_growth_kib"] = state.counters["rss_growth_kib"] = residentKiB() - before;
    }
    results()["page_us"] = state.counters["page_us"] = median(times);
    stage.app.close();
}
BENCHMARK(tenThousandOfThePage)->Unit(benchmark::kMillisecond)->Iterations(1);

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    std::printf("exchange ratio=%.2f", results()["ratio"]);
    for (const char* name : {"bare_us", "ours_us", "server_us", "daemon_us", "hop_us", "page_us", "rss_growth_kib"})
        std::printf(" %s=%.1f", name, results()[name]);
    std::printf("\n");
    return 0;
}
