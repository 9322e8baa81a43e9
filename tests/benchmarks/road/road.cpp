// The road from a key to a game and from the page to a light, in the test machine: road TIMES
// Says "NAME ours=N bare=N peer=N" a line, in microseconds and KiB; what could not be measured is left out.
#include "tests/benchmarks/road/BarePad.h"
#include "tests/benchmarks/road/SdlPad.h"
#include "tests/machine/jvnd/ControlClient.h"
#include "tests/machine/jvninputd/InputService.h"
#include "tests/machine/support/EventReader.h"
#include "tests/machine/support/LitController.h"
#include "tests/machine/support/Program.h"
#include "tests/machine/support/VirtualKeyboard.h"
#include "tests/machine/support/device_nodes.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <thread>

namespace {

using namespace machine;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr const char* padName = "Joyvane Gamepad";
constexpr const char* controllerAddress = "A0:AB:51:00:00:01"; // "oKtRAAAB" as base64

double microseconds(Clock::time_point begin) {
    return std::chrono::duration<double, std::micro>(Clock::now() - begin).count();
}
double median(std::vector<double> times) {
    std::ranges::sort(times);
    return times.empty() ? 0 : times[times.size() / 2];
}

// The settings of a root of root's own, as the page writes them.
class Root {
public:
    Root() {
        char pattern[] = "/tmp/road-XXXXXX";
        m_path = ::mkdtemp(pattern);
        std::filesystem::create_directories(m_path + "/var/mobile/Library/Preferences");
    }
    ~Root() { std::filesystem::remove_all(m_path); }
    Root(const Root&) = delete;
    Root& operator=(const Root&) = delete;
    const std::string& path() const { return m_path; }
    void choose(int type) const {
        const std::string file = m_path + "/var/mobile/Library/Preferences/com.quorrel.joyvane.plist";
        std::ofstream(file + ".new") << "<plist version=\"1.0\"><dict><key>controller_type</key><integer>" << type
                                     << "</integer><key>PS4BluetoothAddress</key><data>oKtRAAAB</data></dict></plist>";
        std::filesystem::rename(file + ".new", file);
    }

private:
    std::string m_path;
};

std::vector<std::string> daemonCommand(const Root& root, const InputService& service) {
    return {JVND_PROGRAM, "--root", root.path(), "--trace", "--input-socket", service.socket()};
}

// What a process holds and how often it was woken, so far.
struct Cost {
    long kib = 0;
    long wakeUps = 0;
};
Cost costOf(pid_t process) {
    const auto sum = [process](const char* file, const std::vector<std::string>& words) {
        std::ifstream stream("/proc/" + std::to_string(process) + "/" + file);
        long total = 0;
        for (std::string line; std::getline(stream, line);)
            for (const std::string& word : words)
                if (line.starts_with(word)) total += std::strtol(line.c_str() + word.size(), nullptr, 10);
        return total;
    };
    return {sum("smaps_rollup", {"Private_Clean:", "Private_Dirty:"}), sum("status", {"voluntary_ctxt_switches:"})};
}

double keyToGame(VirtualKeyboard& keyboard, const SdlPad& pad, int times) {
    std::vector<double> taken;
    for (int i = 0; i < times; ++i) {
        const auto begin = Clock::now();
        keyboard.press(KEY_K);
        if (pad.waitFor(SDL_CONTROLLERBUTTONDOWN)) taken.push_back(microseconds(begin));
        keyboard.release(KEY_K);
        pad.waitFor(SDL_CONTROLLERBUTTONUP);
    }
    return median(taken);
}

// From the daemon's start, as at a login, to a pad that games find; beside it a device made by hand.
void ready(const Root& root, int times) {
    std::vector<double> ours;
    std::vector<double> bare;
    for (int i = 0; i < times; ++i) {
        auto begin = Clock::now();
        {
            const VirtualKeyboard any({.name = "Any Keyboard"});
            bare.push_back(microseconds(begin));
        }
        const InputService service;
        begin = Clock::now();
        const Program daemon(daemonCommand(root, service));
        if (!waitForEventNode(padName).empty()) ours.push_back(microseconds(begin));
    }
    std::printf("ready ours=%.0f bare=%.0f\n", median(ours), median(bare));
}

void keys(const Root& root, VirtualKeyboard& keyboard, int times) {
    double bare = 0;
    {
        const BarePad loop(keyboard.node());
        if (const SdlPad pad(BarePad::name); pad.isOpen()) bare = keyToGame(keyboard, pad, times);
    }
    const InputService service;
    Program daemon(daemonCommand(root, service));
    double ours = 0;
    if (waitForEventNode(padName).empty()) return;
    {
        EventReader everybody(keyboard.node());
        const SdlPad pad(padName);
        waitUntil([&] { return everybody.grabbedByOthers(); });
        if (pad.isOpen()) ours = keyToGame(keyboard, pad, times);
    }
    std::printf("key_to_game ours=%.0f bare=%.0f", ours, bare);

    // At rest, with a pad that nobody has opened.
    std::this_thread::sleep_for(2s);
    const Cost before[] = {costOf(daemon.pid()), costOf(service.process())};
    std::this_thread::sleep_for(5s);
    const Cost after[] = {costOf(daemon.pid()), costOf(service.process())};
    const long kib = after[0].kib + after[1].kib;
    const long wakeUps = after[0].wakeUps + after[1].wakeUps - before[0].wakeUps - before[1].wakeUps;

    // A packaged remapper, which plays the same key.
    if (run({"sh", "-c", "command -v xboxdrv"}).status != 0) {
        std::printf("\nmemory ours=%ld\nwake_ups ours=%ld\n", kib, wakeUps);
        return;
    }
    constexpr const char* peerPad = "Microsoft X-Box 360 pad";
    const Program peer(
        {"sh", "-c",
         "exec xboxdrv --silent --evdev " + keyboard.node() + " --evdev-keymap KEY_K=a --mimic-xpad </dev/null"});
    if (!waitForEventNode(peerPad).empty()) {
        std::this_thread::sleep_for(1s); // it tells nobody when it is ready
        if (const SdlPad pad(peerPad); pad.isOpen()) std::printf(" peer=%.0f", keyToGame(keyboard, pad, times));
    }
    const Cost begun = costOf(peer.pid());
    std::this_thread::sleep_for(5s);
    const Cost ended = costOf(peer.pid());
    std::printf("\nmemory ours=%ld peer=%ld\nwake_ups ours=%ld peer=%ld\n", kib, ended.kib, wakeUps,
                ended.wakeUps - begun.wakeUps);
}

// From the frame that a tap on the colour field sends to the driver's report; beside it the driver asked by hand.
void light(const Root& root, int times) {
    root.choose(1);
    const InputService service;
    const Program daemon(daemonCommand(root, service));
    const ControlClient page(root.path() + "/Library/Caches/jvncontrol.sock");
    DualShock4 controller(Wire::Bluetooth, controllerAddress);
    if (waitForEventNode(controller.name()).empty() || !waitUntil([&] { return page.isServed(); })) return;
    std::string red;
    for (const auto& entry : std::filesystem::directory_iterator("/sys/class/leds"))
        if (entry.path().string().ends_with(":red")) red = entry.path().string() + "/brightness";

    const auto shows = [&controller](std::uint8_t value) {
        const auto end = Clock::now() + 5s;
        while (Clock::now() < end)
            if (const auto shown = controller.light(); shown && shown->red == value) return true;
        return false;
    };
    std::vector<double> ours;
    std::vector<double> bare;
    for (int i = 0; i < times; ++i) {
        std::this_thread::sleep_for(50ms); // a drag's colours come no faster to the service
        const auto value = static_cast<std::uint8_t>(2 * i % 250 + 1);
        auto begin = Clock::now();
        page.tell(JVNControlCommand::SetLEDColor, 1, {value, 0, 0});
        if (shows(value)) ours.push_back(microseconds(begin));
        std::this_thread::sleep_for(50ms);
        begin = Clock::now();
        std::ofstream(red) << value + 1;
        if (shows(static_cast<std::uint8_t>(value + 1))) bare.push_back(microseconds(begin));
    }
    std::printf("light ours=%.0f bare=%.0f\n", median(ours), median(bare));
}

} // namespace

int main(int count, char** arguments) {
    const int times = count > 1 ? std::atoi(arguments[1]) : 100;
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    VirtualKeyboard keyboard({.name = "Road Keyboard"});
    const Root root;
    root.choose(6);
    ready(root, std::min(times, 10));
    keys(root, keyboard, times);
    light(root, times);
}
