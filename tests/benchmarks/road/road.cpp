// The road from a key to a game and from the page to a light, in the test machine: road TIMES
// Says "NAME ours=N bare=N peer=N" a line, in microseconds, KiB or wake-ups; what could not be measured is left out.
#include "tests/benchmarks/input_latency/remappers.h"
#include "tests/benchmarks/road/SdlGame.h"
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
#include <cstring>
#include <filesystem>
#include <fstream>
#include <libudev.h>
#include <memory>
#include <poll.h>
#include <sys/resource.h>
#include <thread>

namespace {

using namespace machine;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr const char* padName = "Joyvane Gamepad";
// Whoever types and plays must not be what a press waits for; one who spins has no more right than the others.
constexpr int priorityOfTheWorld = -15;
constexpr const char* controllerAddress = "A0:AB:51:00:00:01"; // "oKtRAAAB" as base64

// A keyboard as most people have one: what stands in for it has its lamps, too.
DeviceDescription asMostHave(const char* name) {
    auto description = DeviceDescription::withLamps();
    description.name = name;
    return description;
}

double microseconds(Clock::time_point begin) {
    return std::chrono::duration<double, std::micro>(Clock::now() - begin).count();
}
double median(std::vector<double> times) {
    std::ranges::sort(times);
    return times.empty() ? 0 : times[times.size() / 2];
}

bool isXboxdrv(const PeerProgram& program) { return std::strcmp(program.name, "xboxdrv") == 0; }

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
    return {JVND_PROGRAM, "--root", root.path(), "--input-socket", service.socket()};
}

// What a process holds and how often it was woken, so far.
struct Cost {
    long kib = 0;
    long wakeUps = 0;
};
Cost costOf(pid_t process) {
    const auto sum = [process](const std::string& file, const std::vector<std::string>& words) {
        std::ifstream stream("/proc/" + std::to_string(process) + "/" + file);
        long total = 0;
        for (std::string line; std::getline(stream, line);)
            for (const std::string& word : words)
                if (line.starts_with(word)) total += std::strtol(line.c_str() + word.size(), nullptr, 10);
        return total;
    };
    Cost cost{sum("smaps_rollup", {"Private_Clean:", "Private_Dirty:"}), 0};
    std::error_code error; // every thread counts
    for (const auto& task : std::filesystem::directory_iterator("/proc/" + std::to_string(process) + "/task", error))
        cost.wakeUps += sum("task/" + task.path().filename().string() + "/status", {"voluntary_ctxt_switches:"});
    return cost;
}
// Together, over five seconds in which nothing happens.
Cost costAtRest(const std::vector<pid_t>& processes) {
    std::this_thread::sleep_for(2s);
    Cost cost;
    for (const pid_t process : processes) cost.wakeUps -= costOf(process).wakeUps;
    std::this_thread::sleep_for(5s);
    for (const pid_t process : processes) {
        const Cost now = costOf(process);
        cost.kib += now.kib;
        cost.wakeUps += now.wakeUps;
    }
    return cost;
}

struct Contestant {
    const char* name;
    VirtualKeyboard* keys;
    SDL_JoystickID pad;
    std::vector<double> times = {};
};

// A remapper may go on working when its event has arrived already: the next one's turn is not to pay for that.
constexpr auto afterwards = 20ms;

void pressOnce(const SdlGame& game, Contestant& contestant) {
    const auto begin = Clock::now();
    contestant.keys->press(KEY_K);
    if (game.waitFor(SDL_CONTROLLERBUTTONDOWN, contestant.pad)) contestant.times.push_back(microseconds(begin));
    contestant.keys->release(KEY_K);
    game.waitFor(SDL_CONTROLLERBUTTONUP, contestant.pad);
    std::this_thread::sleep_for(afterwards);
}

// In turns, so that whatever else the computer does meets all of them alike.
void press(const char* what, SdlGame::Waiting waiting, VirtualKeyboard& keyboard, VirtualKeyboard& bareKeys, Peer* peer,
           int times) {
    SdlGame game(waiting);
    std::vector<Contestant> contestants;
    contestants.push_back({"ours", &keyboard, game.open(waitForEventNode(padName))});
    contestants.push_back({"bare", &bareKeys, game.open(waitForEventNode("Bare Pad"))});
    if (peer) contestants.push_back({"peer", &peer->keys(), game.open(peer->pad())});
    std::erase_if(contestants, [](const Contestant& contestant) { return contestant.pad < 0; });
    for (Contestant& contestant : contestants) // whoever is only just being ready
        waitUntil([&] {
            pressOnce(game, contestant);
            return !contestant.times.empty();
        });
    for (Contestant& contestant : contestants) contestant.times.clear();
    ::setpriority(PRIO_PROCESS, 0, waiting == SdlGame::Waiting::Sleeps ? priorityOfTheWorld : 0);
    for (int i = 0; i < times; ++i) {
        for (Contestant& contestant : contestants) pressOnce(game, contestant);
        std::ranges::rotate(contestants, contestants.begin() + 1); // nobody always follows the same one
    }
    std::printf("%s", what);
    for (const Contestant& contestant : contestants)
        if (!contestant.times.empty()) std::printf(" %s=%.0f", contestant.name, median(contestant.times));
    std::printf("\n");
}

// Hears from udev when it has dealt with a device's node. Asking again and again would take the processor from those
// who make it.
class NodeAwaiter {
public:
    explicit NodeAwaiter(std::string name)
        : m_name(std::move(name)), m_udev(::udev_new()), m_monitor(::udev_monitor_new_from_netlink(m_udev, "udev")) {
        ::udev_monitor_filter_add_match_subsystem_devtype(m_monitor, "input", nullptr);
        ::udev_monitor_enable_receiving(m_monitor);
    }
    ~NodeAwaiter() {
        ::udev_monitor_unref(m_monitor);
        ::udev_unref(m_udev);
    }
    NodeAwaiter(const NodeAwaiter&) = delete;
    NodeAwaiter& operator=(const NodeAwaiter&) = delete;

    // False when it does not come.
    bool wait() const {
        const auto end = Clock::now() + 20s;
        while (Clock::now() < end) {
            ::pollfd readable{::udev_monitor_get_fd(m_monitor), POLLIN, 0};
            ::poll(&readable, 1, 1000);
            while (::udev_device* const device = ::udev_monitor_receive_device(m_monitor)) {
                const bool isIt = isAwaited(*device);
                ::udev_device_unref(device);
                if (isIt) return true;
            }
        }
        return false;
    }

private:
    bool isAwaited(::udev_device& device) const {
        if (!::udev_device_get_devnode(&device) || std::strcmp(::udev_device_get_action(&device), "add") != 0)
            return false;
        ::udev_device* const parent = ::udev_device_get_parent(&device); // the child's
        const char* const name = parent ? ::udev_device_get_sysattr_value(parent, "name") : nullptr;
        return name && m_name == name && std::strstr(::udev_device_get_sysname(&device), "event");
    }

    std::string m_name;
    ::udev* m_udev;
    ::udev_monitor* m_monitor;
};

// What the one before has left behind, udev's work on it too, is no part of the next one's time.
void settle() { run({"udevadm", "settle"}, kRoot, 60s); }

// From the daemon's start, as at a login, to a pad that games find; beside it a device made by hand in a process that
// is there, and the start of a packaged remapper, which makes a pad alone.
void ready(const Root& root, int times) {
    std::vector<double> ours;
    std::vector<double> bare;
    std::vector<double> peer;
    const auto programs = peerPrograms();
    const auto remapper = std::ranges::find_if(programs, [](const PeerProgram& program) { return isXboxdrv(program); });
    const bool hasRemapper =
        remapper != programs.end() && run({"sh", "-c", std::string("command -v ") + remapper->name}).status == 0;
    for (int i = 0; i < times; ++i) {
        {
            settle();
            const NodeAwaiter node("Any Keyboard");
            const auto begin = Clock::now();
            const VirtualKeyboard any(asMostHave("Any Keyboard"));
            if (node.wait()) bare.push_back(microseconds(begin));
        }
        {
            const InputService service;
            settle();
            const NodeAwaiter node(padName);
            const auto begin = Clock::now();
            const Program daemon(daemonCommand(root, service));
            if (node.wait()) ours.push_back(microseconds(begin));
        }
        if (hasRemapper) {
            const VirtualKeyboard keys({.name = "Remapped Keys", .keys = {KEY_K}, .lamps = {}});
            settle();
            const NodeAwaiter node(remapper->made);
            const auto begin = Clock::now();
            const Program program({"sh", "-c", "NODE=" + keys.node() + "; " + remapper->words});
            if (node.wait()) peer.push_back(microseconds(begin));
        }
    }
    std::printf("ready ours=%.0f bare=%.0f", median(ours), median(bare));
    if (!peer.empty()) std::printf(" peer=%.0f", median(peer));
    std::printf("\n");
}

void keys(const Root& root, int times) {
    // Only one of them is a keyboard, for the service takes every keyboard.
    VirtualKeyboard keyboard(asMostHave("Road Keyboard"));
    VirtualKeyboard bareKeys({.name = "Bare Keys", .keys = {KEY_K}, .lamps = {}});
    const BareLoop bare(bareKeys.node(), "Bare Pad");
    const InputService service;
    const Program daemon(daemonCommand(root, service));
    if (waitForEventNode(padName).empty()) return;
    std::unique_ptr<Peer> peer;
    pid_t peerProcess = 0;
    for (const PeerProgram& program : peerPrograms())
        if (isXboxdrv(program)) peer = Peer::start(program);
    if (peer) peerProcess = std::atoi(run({"pidof", "-s", "xboxdrv"}).output.c_str());
    settle();

    press("key_to_game", SdlGame::Waiting::Sleeps, keyboard, bareKeys, peer.get(), times);
    press("key_to_spinning_game", SdlGame::Waiting::Spins, keyboard, bareKeys, peer.get(), times / 4 + 1);

    const Cost ours = costAtRest({daemon.pid(), service.process()});
    std::printf("memory ours=%ld", ours.kib);
    const Cost theirs = peerProcess > 0 ? costAtRest({peerProcess}) : Cost{};
    if (peerProcess > 0) std::printf(" peer=%ld", theirs.kib);
    std::printf("\nwake_ups ours=%ld", ours.wakeUps);
    if (peerProcess > 0) std::printf(" peer=%ld", theirs.wakeUps);
    std::printf("\n");
}

// From the frame that a tap on the colour field sends to the driver's report; beside it the driver asked by hand, and
// by a packaged tool for lamps.
void light(const Root& root, int times) {
    root.choose(1);
    const InputService service;
    const Program daemon(daemonCommand(root, service));
    const ControlClient page(root.path() + "/Library/Caches/jvncontrol.sock");
    DualShock4 controller(Wire::Bluetooth, controllerAddress);
    if (waitForEventNode(controller.name()).empty() || !waitUntil([&] { return page.isServed(); })) return;
    std::string lamp;
    for (const auto& entry : std::filesystem::directory_iterator("/sys/class/leds"))
        if (entry.path().string().ends_with(":red")) lamp = entry.path().filename().string();
    const bool hasTool = run({"sh", "-c", "command -v brightnessctl"}).status == 0;

    std::vector<double> ours;
    std::vector<double> bare;
    std::vector<double> peer;
    const auto shown = [&](std::uint8_t red, std::vector<double>& taken, const std::function<void()>& ask) {
        std::this_thread::sleep_for(50ms); // a drag's colours come no faster to the service
        const auto begin = Clock::now();
        ask();
        if (controller.waitForLight({red, 0, 0})) taken.push_back(microseconds(begin));
    };
    for (int i = 0; i < times; ++i) {
        const auto red = static_cast<std::uint8_t>(3 * i % 240 + 1);
        const auto next = static_cast<std::uint8_t>(red + 1);
        const auto last = static_cast<std::uint8_t>(red + 2);
        shown(red, ours, [&] { page.tell(JVNControlCommand::SetLEDColor, 1, {red, 0, 0}); });
        shown(next, bare, [&] { std::ofstream("/sys/class/leds/" + lamp + "/brightness") << int{next}; });
        if (hasTool) shown(last, peer, [&] { run({"brightnessctl", "-q", "-d", lamp, "set", std::to_string(last)}); });
    }
    std::printf("light ours=%.0f bare=%.0f", median(ours), median(bare));
    if (hasTool) std::printf(" peer=%.0f", median(peer));
    std::printf("\n");
}

} // namespace

int main(int count, char** arguments) {
    const int times = count > 1 ? std::atoi(arguments[1]) : 100;
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    const Root root;
    root.choose(6);
    {
        const VirtualKeyboard keyboard(asMostHave("Road Keyboard"));
        ready(root, std::min(times, 5));
    }
    keys(root, times);
    light(root, std::min(times, 50));
}
