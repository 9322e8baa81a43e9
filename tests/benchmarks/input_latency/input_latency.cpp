// How long a key takes to the pad, in the test machine: input_latency PRESSES RATE
// Presses the key K on a virtual keyboard and waits for what each remapper makes of it; then RATE presses a second for
// as many presses, of which none may be lost. Prints "NAME MEDIAN_US P95_US LOST_SLOW LOST_FAST" a line.
#include "tests/machine/jvninputd/InputClient.h"
#include "tests/machine/jvninputd/InputService.h"
#include "tests/machine/support/EventReader.h"
#include "tests/machine/support/Program.h"
#include "tests/machine/support/VirtualKeyboard.h"
#include "tests/machine/support/device_nodes.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <linux/uinput.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

using namespace machine;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr const char* keyboardName = "Latency Keyboard";

// The least that anybody could do: reads the keyboard and writes a pad.
class BareLoop {
public:
    explicit BareLoop(const std::string& node) : m_process(::fork()) {
        if (m_process != 0) return;
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        const int keyboard = ::open(node.c_str(), O_RDONLY);
        ::ioctl(keyboard, EVIOCGRAB, 1);
        const int pad = ::open("/dev/uinput", O_WRONLY);
        ::ioctl(pad, UI_SET_EVBIT, EV_KEY);
        ::ioctl(pad, UI_SET_KEYBIT, BTN_A);
        ::uinput_setup setup{};
        setup.id.bustype = BUS_VIRTUAL;
        std::snprintf(setup.name, sizeof setup.name, "Bare Pad");
        ::ioctl(pad, UI_DEV_SETUP, &setup);
        ::ioctl(pad, UI_DEV_CREATE);
        ::input_event events[8];
        for (;;) {
            const ssize_t size = ::read(keyboard, events, sizeof events);
            for (ssize_t i = 0; i < size / static_cast<ssize_t>(sizeof events[0]); ++i) {
                if (events[i].type != EV_KEY || events[i].value > 1) continue;
                ::input_event out[2]{};
                out[0].type = EV_KEY;
                out[0].code = BTN_A;
                out[0].value = events[i].value;
                if (::write(pad, out, sizeof out) < 0) ::_exit(1);
            }
        }
    }
    ~BareLoop() {
        ::kill(m_process, SIGKILL);
        ::waitpid(m_process, nullptr, 0);
    }

private:
    pid_t m_process;
};

void measure(const char* name, VirtualKeyboard& keyboard, EventReader& pad, std::uint16_t code, int presses, int rate) {
    std::vector<double> times;
    int lostSlow = 0;
    for (int i = 0; i < presses; ++i) {
        const auto begin = Clock::now();
        keyboard.press(KEY_K);
        if (pad.waitFor(EV_KEY, code, 1, 500ms))
            times.push_back(std::chrono::duration<double, std::micro>(Clock::now() - begin).count());
        else
            ++lostSlow;
        keyboard.release(KEY_K);
        pad.waitFor(EV_KEY, code, 0, 500ms);
    }

    int seen = 0;
    std::thread reader([&] {
        while (seen < presses)
            if (!pad.waitFor(EV_KEY, code, 1, 3s))
                break;
            else
                ++seen;
    });
    auto next = Clock::now();
    for (int i = 0; i < presses; ++i) {
        keyboard.tap(KEY_K);
        next += 1'000'000us / rate;
        std::this_thread::sleep_until(next);
    }
    reader.join();

    std::ranges::sort(times);
    const auto at = [&times](std::size_t percent) {
        return times.empty() ? 0 : times[(times.size() - 1) * percent / 100];
    };
    std::printf("%s %.0f %.0f %d %d\n", name, at(50), at(95), lostSlow, presses - seen);
    std::fflush(stdout);
}

bool installed(const char* program) { return run({"sh", "-c", std::string("command -v ") + program}).status == 0; }

// A packaged remapper, which makes a device of this name out of the keyboard.
void measurePeer(const char* name, const std::string& command, const char* device, std::uint16_t code,
                 VirtualKeyboard& keyboard, int presses, int rate) {
    if (!installed(name)) return;
    const std::vector<std::string> before = eventNodes(device);
    Program peer({"sh", "-c", command});
    std::string node;
    if (!waitUntil([&] {
            for (const std::string& found : eventNodes(device))
                if (std::ranges::find(before, found) == before.end()) node = found;
            return !node.empty();
        })) {
        std::fprintf(stderr, "%s: no device\n%s\n", name, peer.output().c_str());
        return;
    }
    std::this_thread::sleep_for(1s); // it tells nobody when it is ready
    EventReader pad(node);
    measure(name, keyboard, pad, code, presses, rate);
}

} // namespace

int main(int count, char** arguments) {
    const int presses = count > 1 ? std::atoi(arguments[1]) : 300;
    const int rate = count > 2 ? std::atoi(arguments[2]) : 1000;
    VirtualKeyboard keyboard({.name = keyboardName});
    for (int round = 0; round < 2; ++round) { // one after the other and again, as the computer may be busy
        {
            const BareLoop bare(keyboard.node());
            EventReader pad = EventReader::ofDevice("Bare Pad");
            measure("bare", keyboard, pad, BTN_A, presses, rate);
        }
        {
            const InputService service;
            InputClient governor(service.socket(), input::Role::govern);
            governor.play(defaultBindings());
            EventReader pad = EventReader::ofDevice("Joyvane Gamepad");
            if (!governor.waitFor(input::Readiness::playing)) return 1;
            measure("jvninputd", keyboard, pad, BTN_A, presses, rate);
        }
    }
    measurePeer("xboxdrv",
                "exec xboxdrv --silent --evdev " + keyboard.node() + " --evdev-keymap KEY_K=a --mimic-xpad </dev/null",
                "Microsoft X-Box 360 pad", BTN_A, keyboard, presses, rate);
    // It remaps nothing here; it only takes the keyboard and writes it again.
    measurePeer("intercept", "intercept -g " + keyboard.node() + " | uinput -d " + keyboard.node(), keyboardName, KEY_K,
                keyboard, presses, rate);
}
