// jvndiscovery: stands in for the add-on's discovery tool. Started by the settings page with no arguments; finds the
// root in the environment. An interrupt ends it, and so does the end of who started it.

#include "kit/dispatch/shutdown.h"
#include "simulator/Discovery.h"
#include "simulator/program.h"
#include "system/bus/SessionBus.h"
#include "system/files/root.h"
#include "system/process/child_environment.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>

namespace {

constexpr double flushPatience = 1; // seconds

std::string scriptText() {
    std::ifstream file(seat::hostPath(simulator::Discovery::scriptPath));
    if (!file) return simulator::believableDiscovery;
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace

int main(int argc, char**) {
    const char* const root = std::getenv(seat::rootVariable);
    if (argc != 1 || !root || !*root) {
        std::fprintf(stderr,
                     "Usage: %s=DIR jvndiscovery\nStands in for the discovery tool of the phone whose files are "
                     "in DIR.\n",
                     seat::rootVariable);
        return 2;
    }
    seat::setRoot(root);
    auto script = simulator::parseDiscoveryScript(scriptText());
    if (!script.problem.empty()) {
        std::fprintf(stderr, "jvndiscovery: %s\n", script.problem.c_str());
        return 2;
    }

    simulator::Program program;
    program.endWithParent();
    int code = 0;
    {
        const simulator::Discovery discovery(program, std::move(script));
        code = program.run();
    }
    program.runUntil([] { return seat::SessionBus::shared().isFlushed(); }, flushPatience);
    seat::SessionBus::shared().close();
    return seat::finishProcess(code);
}
