#include "tests/benchmarks/input_latency/remappers.h"

#include "tests/machine/support/device_nodes.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <linux/uinput.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace machine;

namespace {

constexpr const char* peerKeysName = "Peer Keys";

[[noreturn]] void loop(int keys, int pad) {
    ::input_event events[8];
    for (;;) {
        const ssize_t size = ::read(keys, events, sizeof events);
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

} // namespace

BareLoop::BareLoop(const std::string& node, const char* padName) : m_process(::fork()) {
    if (m_process != 0) return;
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    const int keys = ::open(node.c_str(), O_RDONLY);
    ::ioctl(keys, EVIOCGRAB, 1);
    const int pad = ::open("/dev/uinput", O_WRONLY);
    ::ioctl(pad, UI_SET_EVBIT, EV_KEY);
    ::ioctl(pad, UI_SET_KEYBIT, BTN_A);
    ::ioctl(pad, UI_SET_EVBIT, EV_ABS); // at rest: games take nothing without a stick for a pad
    for (const int axis : {ABS_X, ABS_Y}) {
        ::uinput_abs_setup stick{};
        stick.code = static_cast<std::uint16_t>(axis);
        stick.absinfo.minimum = -32768;
        stick.absinfo.maximum = 32767;
        ::ioctl(pad, UI_ABS_SETUP, &stick);
    }
    ::uinput_setup setup{};
    setup.id.bustype = BUS_VIRTUAL;
    std::snprintf(setup.name, sizeof setup.name, "%s", padName);
    ::ioctl(pad, UI_DEV_SETUP, &setup);
    ::ioctl(pad, UI_DEV_CREATE);
    loop(keys, pad);
}

BareLoop::~BareLoop() {
    ::kill(m_process, SIGKILL);
    ::waitpid(m_process, nullptr, 0);
}

std::vector<PeerProgram> peerPrograms() {
    return {
        {"xboxdrv", "exec xboxdrv --silent --evdev $NODE --evdev-keymap KEY_K=a --mimic-xpad </dev/null",
         "Microsoft X-Box 360 pad", BTN_A},
        // It remaps nothing here; it only takes the keys and writes them again.
        {"interception", "interception -g $NODE | uinput -d $NODE", peerKeysName, KEY_K},
    };
}

Peer::Peer(const PeerProgram& program) : m_keys({.name = peerKeysName, .keys = {KEY_K}, .lamps = {}}) {
    const std::vector<std::string> before = eventNodes(program.made);
    m_process =
        std::make_unique<Program>(std::vector<std::string>{"sh", "-c", "NODE=" + m_keys.node() + "; " + program.words});
    waitUntil([&] {
        for (const std::string& found : eventNodes(program.made))
            if (std::ranges::find(before, found) == before.end()) m_pad = found;
        return !m_pad.empty() || m_process->ended();
    });
}

std::unique_ptr<Peer> Peer::start(const PeerProgram& program) {
    if (run({"sh", "-c", std::string("command -v ") + program.name}).status != 0) {
        std::fprintf(stderr, "%s is not installed\n", program.name);
        return nullptr;
    }
    std::unique_ptr<Peer> peer(new Peer(program));
    if (!peer->m_pad.empty()) return peer;
    std::fprintf(stderr, "%s makes no device: %s\n", program.name, peer->m_process->output().c_str());
    return nullptr;
}
