#include "services/common/EventLoop.h"
#include "services/common/log.h"
#include "services/input_protocol/messages.h"
#include "services/jvninputd/Service.h"
#include "services/jvninputd/listening_socket.h"
#include "system/process/standard_descriptors.h"

#include <csignal>
#include <cstdio>
#include <cstring>
#include <string>
#include <systemd/sd-daemon.h>

namespace {

constexpr const char* usage = "usage: jvninputd [--socket PATH]\n"
                              "\n"
                              "Lets keyboards play as a gamepad, as its clients say, and lights controllers.\n"
                              "Started by the service manager with its socket; otherwise it listens at PATH\n"
                              "(%s).\n"
                              "\n"
                              "  --socket PATH  where to listen\n"
                              "  --help         this text\n"
                              "  --version      the version\n";

} // namespace

int main(int count, char** arguments) {
    seat::openMissingStandardDescriptors();
    std::signal(SIGPIPE, SIG_IGN); // whoever reads the log may go
    services::setLogName("jvninputd");
    std::string path = input::socketPath;
    for (int i = 1; i < count; ++i) {
        const std::string argument = arguments[i];
        if (argument == "--help") {
            std::printf(usage, input::socketPath);
            return 0;
        }
        if (argument == "--version") {
            std::puts("jvninputd " JOYVANE_VERSION);
            return 0;
        }
        if (argument != "--socket" || i + 1 == count) {
            std::fprintf(stderr, usage, input::socketPath);
            return 2;
        }
        path = arguments[++i];
    }

    auto listener = jvninputd::inheritedSocket();
    if (!listener) listener = jvninputd::listeningSocket(path);
    if (!listener) return 1;

    services::EventLoop loop;
    const auto terminated = loop.onSignal(SIGTERM, [&loop] { loop.quit(0); });
    const auto interrupted = loop.onSignal(SIGINT, [&loop] { loop.quit(0); });
    const jvninputd::Service service(loop, std::move(listener));
    ::sd_notify(0, "READY=1");
    return loop.run();
}
