// How long a key takes to the pad, in the test machine: input_latency PRESSES RATE
// All remappers run at once, each with keys of its own, and are pressed in turns, so that whatever else the computer
// does meets all of them alike. Then, one after the other, RATE presses a second for as many presses.
// Prints "NAME MEDIAN_US P95_US LOST LOST_FAST" a line; what is lost is a press that the pad never shows.
#include "tests/benchmarks/input_latency/PadReader.h"
#include "tests/benchmarks/input_latency/remappers.h"

#include "tests/machine/jvninputd/InputClient.h"
#include "tests/machine/jvninputd/InputService.h"
#include "tests/machine/support/VirtualKeyboard.h"
#include "tests/machine/support/device_nodes.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>

namespace {

using namespace machine;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

// Whoever types and looks must not be what a press waits for.
constexpr int priorityOfTheWorld = -15;

struct Contestant {
    const char* name;
    VirtualKeyboard& keys;
    PadReader pad;
    std::vector<double> times = {};
    int lost = 0;
    int lostFast = 0;
};

// One press and its release.
void pressOnce(Contestant& contestant) {
    contestant.pad.forget();
    const auto begin = Clock::now();
    contestant.keys.press(KEY_K);
    if (contestant.pad.waitForPresses(1, 500ms))
        contestant.times.push_back(std::chrono::duration<double, std::micro>(Clock::now() - begin).count());
    else
        ++contestant.lost;
    contestant.keys.release(KEY_K);
    contestant.pad.waitForReleases(1, 500ms);
}

void pressFast(Contestant& contestant, int presses, int rate) {
    contestant.pad.forget();
    std::thread reader([&] { contestant.pad.waitForPresses(presses, 2s); });
    // Never faster than the rate: what the computer has slept through is not made up for.
    auto next = Clock::now();
    for (int i = 0; i < presses; ++i) {
        contestant.keys.tap(KEY_K);
        next = std::max(next + 1'000'000us / rate, Clock::now());
        std::this_thread::sleep_until(next);
    }
    reader.join();
    contestant.lostFast += presses - contestant.pad.presses();
    if (contestant.pad.dropped()) std::fprintf(stderr, "%s: the benchmark itself was too slow\n", contestant.name);
}

void print(Contestant& contestant) {
    auto& times = contestant.times;
    std::ranges::sort(times);
    const auto at = [&times](std::size_t percent) {
        return times.empty() ? 0 : times[(times.size() - 1) * percent / 100];
    };
    std::printf("%s %.0f %.0f %d %d\n", contestant.name, at(50), at(95), contestant.lost, contestant.lostFast);
    std::fflush(stdout);
}

} // namespace

int main(int count, char** arguments) {
    const int presses = count > 1 ? std::atoi(arguments[1]) : 300;
    const int rate = count > 2 ? std::atoi(arguments[2]) : 1000;

    // Only one of them is a keyboard, for the service takes every keyboard.
    VirtualKeyboard keyboard({.name = "Latency Keyboard"});
    VirtualKeyboard bareKeys({.name = "Bare Keys", .keys = {KEY_K}, .lamps = {}});
    const BareLoop bare(bareKeys.node(), "Bare Pad");
    const InputService service;
    InputClient governor(service.socket(), input::Role::govern);
    governor.play(defaultBindings());
    std::vector<Contestant> contestants;
    contestants.push_back({"bare", bareKeys, PadReader(waitForEventNode("Bare Pad"), BTN_A)});
    contestants.push_back({"jvninputd", keyboard, PadReader(waitForEventNode("Joyvane Gamepad"), BTN_A)});
    if (!governor.waitFor(input::Readiness::playing)) return 1;
    std::vector<std::unique_ptr<Peer>> peers;
    for (const PeerProgram& program : peerPrograms())
        if (auto peer = Peer::start(program))
            contestants.push_back({program.name, peers.emplace_back(std::move(peer))->keys(),
                                   PadReader(peers.back()->pad(), program.code)});
    run({"udevadm", "settle"}, kRoot, 60s);

    ::setpriority(PRIO_PROCESS, 0, priorityOfTheWorld);
    for (Contestant& contestant : contestants) // whoever has only just started
        waitUntil([&] {
            pressOnce(contestant);
            return !contestant.times.empty();
        });
    for (Contestant& contestant : contestants) {
        contestant.times.clear();
        contestant.lost = 0;
    }
    for (int i = 0; i < presses; ++i)
        for (Contestant& contestant : contestants) pressOnce(contestant);
    for (Contestant& contestant : contestants) pressFast(contestant, presses, rate);
    for (Contestant& contestant : contestants) print(contestant);
}
