// jvnd [--root DIR]: stands in for the add-on's daemon. Says "ready" when it listens, then a line for each thing that
// happens; takes lines that change its manner from its standard input, and ends with the pipe that it has there.

#include "kit/dispatch/shutdown.h"
#include "simulator/Daemon.h"
#include "simulator/output_lines.h"
#include "simulator/program.h"
#include "system/bus/SessionBus.h"
#include "system/files/root.h"
#include "system/process/child_environment.h"

#include <cstdio>
#include <cstdlib>
#include <string_view>

int main(int argc, char** argv) {
    const char* root = std::getenv(seat::rootVariable);
    if (argc == 3 && std::string_view(argv[1]) == "--root") root = argv[2];
    if (argc == 2 || argc > 3 || !root || !*root) {
        std::fprintf(stderr, "Usage: jvnd --root DIR\nStands in for the add-on's daemon of the phone whose files are "
                             "in DIR.\n");
        return 2;
    }
    seat::setRoot(root);

    simulator::Program program;
    int code = 1;
    {
        simulator::Daemon daemon;
        const auto problem = daemon.start();
        if (problem.empty()) {
            program.readLines([&daemon](const std::string& line) { daemon.change(line); });
            simulator::say("ready");
            code = program.run();
        } else {
            std::fprintf(stderr, "jvnd: %s\n", problem.c_str());
        }
    }
    seat::SessionBus::shared().close();
    return seat::finishProcess(code);
}
