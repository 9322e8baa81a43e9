// jvndiscovery: the tool that the page starts to pair a controller. See options.cpp for its command line, Discovery.h
// for what it does.

#include "kit/runtime/log.h"
#include "services/bluetooth/clients.h"
#include "services/common/log.h"
#include "services/common/root_folder.h"
#include "services/jvndiscovery/Discovery.h"
#include "services/jvndiscovery/PageMessenger.h"
#include "services/jvndiscovery/options.h"
#include "services/jvndiscovery/settings.h"
#include "system/files/Descriptor.h"
#include "system/process/pidfd.h"
#include "system/process/standard_descriptors.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <sys/epoll.h>
#include <unistd.h>
#include <vector>

namespace {

using namespace jvndiscovery;

enum ExitCode { ExitDone = 0, ExitFailure = 1, ExitUsage = 2 };

// What the last message to the page gets: to be answered, or where there is no session bus yet, to find one.
constexpr std::chrono::milliseconds deliveryTime{2000};
constexpr std::chrono::milliseconds connectionTime{300};

constexpr int endingSignals[] = {SIGINT, SIGTERM, SIGHUP};

// The page's types that nothing is paired for: one is paired by cable, the other is the keyboard.
bool isPairedOverBluetooth(int type) { return type != 0 && type != 6; }

int discover(const std::string& root, int type, bool simulates) {
    services::EventLoop loop;
    PageMessenger page(loop);
    const auto client = simulates ? bluetooth::makeSimulatedClient(loop, root + bluetooth::simulatedWorldPath, type)
                                  : bluetooth::makeSystemClient(loop);
    services::EventLoop::Source limit;
    Discovery discovery(loop, *client,
                        {[&page](State state) { page.report(state); },
                         [&root](const bluetooth::Address& address) { return storeAddress(root, address); },
                         [&](Outcome outcome) {
                             const int code = outcome == Outcome::NoBluetooth ? ExitFailure : ExitDone;
                             if (outcome == Outcome::Interrupted) return loop.quit(code);
                             limit = loop.after(page.isConnected() ? deliveryTime : connectionTime,
                                                [&loop, code] { loop.quit(code); });
                             page.whenDelivered([&loop, code] { loop.quit(code); });
                         }});
    std::vector<services::EventLoop::Source> sources;
    for (const int signal : endingSignals)
        sources.push_back(loop.onSignal(signal, [&discovery] { discovery.interrupt(); }));
    // Nobody else would interrupt it once the page has crashed.
    const seat::Descriptor parent(::pidfd_open(::getppid(), 0));
    if (parent) {
        auto& watch = sources.emplace_back();
        watch = loop.watch(parent.get(), EPOLLIN, [&](std::uint32_t) {
            discovery.interrupt();
            watch.reset();
        });
    }
    return loop.run();
}

// An interruption that comes before there is a loop waits for it.
void holdSignals() {
    ::sigset_t set;
    ::sigemptyset(&set);
    for (const int signal : endingSignals) ::sigaddset(&set, signal);
    ::sigprocmask(SIG_BLOCK, &set, nullptr);
}

int fail(const std::string& problem, int code) {
    services::log("%s", problem.c_str());
    return code;
}

} // namespace

int main(int argc, char** argv) {
    holdSignals();
    seat::openMissingStandardDescriptors();
    ::signal(SIGPIPE, SIG_IGN);
    services::setLogName("jvndiscovery");
    seat::setLogSink([](std::string_view line) { services::log("%.*s", static_cast<int>(line.size()), line.data()); });
    const auto line = parseCommandLine(std::span<const char* const>(argv, static_cast<std::size_t>(argc)).subspan(1));
    if (!line.problem.empty()) return fail(line.problem + "; see jvndiscovery --help", ExitUsage);
    if (line.showsHelp) return std::fputs(helpText().c_str(), stdout) < 0 ? ExitFailure : ExitDone;
    if (line.showsVersion) return std::puts("jvndiscovery " JOYVANE_VERSION) < 0 ? ExitFailure : ExitDone;

    const std::string root = services::rootFolder(line.root);
    if (root.empty()) return fail("the user has no home folder", ExitFailure);
    const auto type = storedControllerType(root);
    if (!type) return ExitFailure;
    if (!isPairedOverBluetooth(*type))
        return fail("controllers of type " + std::to_string(*type) + " are not paired over Bluetooth", ExitUsage);
    const char* const simulates = std::getenv("JOYVANE_SIMULATE");
    return discover(root, *type, line.simulates || (simulates && std::string_view(simulates) == "1"));
}
