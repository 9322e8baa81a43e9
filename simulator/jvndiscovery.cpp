// jvndiscovery: stands in for the add-on's discovery tool. Started by the settings page with no arguments; finds the
// root in the environment. An interrupt ends it, and so does the end of who started it.

#include "host/bus/SessionBus.h"
#include "host/dispatch/shutdown.h"
#include "host/foundation/root.h"
#include "host/process/child_environment.h"
#include "simulator/Discovery.h"
#include "simulator/program.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>

namespace {

constexpr double flushPatience = 1; // seconds

std::string scriptText() {
    std::ifstream file(host::hostPath(simulator::Discovery::scriptPath));
    if (!file) return simulator::believableDiscovery;
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace

int main(int argc, char**) {
    const char* const root = std::getenv(host::rootVariable);
    if (argc != 1 || !root || !*root) {
        std::fprintf(stderr,
                     "Usage: %s=DIR jvndiscovery\nStands in for the discovery tool of the phone whose files are "
                     "in DIR.\n",
                     host::rootVariable);
        return 2;
    }
    host::setRoot(root);
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
    program.runUntil([] { return host::SessionBus::shared().isFlushed(); }, flushPatience);
    host::SessionBus::shared().close();
    return host::finishProcess(code);
}
