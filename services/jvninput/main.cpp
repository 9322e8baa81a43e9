#include "services/jvninput/Connection.h"
#include "services/jvninput/keymap_file.h"
#include "services/jvninput/options.h"
#include "services/jvninput/state_text.h"
#include "system/process/standard_descriptors.h"

#include <cstdio>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

constexpr int failure = 1;
constexpr int misuse = 2;

int fail(const std::string& complaint, int code = failure) {
    std::fprintf(stderr, "jvninput: %s\n", complaint.c_str());
    return code;
}

// One line of what is so now.
std::string line(const input::State& state) {
    const std::string inputs = jvninput::inputsText(state.inputs);
    std::string text = jvninput::readinessText(state);
    if (state.readiness == input::Readiness::playing) text += inputs.empty() ? ": nothing" : ": " + inputs;
    return text;
}

// On a terminal the one line changes; elsewhere each is a line of its own.
void show(const std::string& text) {
    static const bool isTerminal = ::isatty(STDOUT_FILENO) != 0;
    static std::string last;
    if (text == last) return;
    last = text;
    std::printf(isTerminal ? "\r\033[K%s" : "%s\n", text.c_str());
    std::fflush(stdout);
}

int run(const jvninput::Options& options) {
    using jvninput::Command;
    const bool tries = options.command == Command::tryOut;
    std::string complaint;
    std::optional<input::Settings> settings;
    if (tries) {
        std::size_t leftOut = 0;
        settings = jvninput::readKeymapFile(options.keymapFile, leftOut, complaint);
        if (!settings) return fail(complaint);
        if (leftOut > 0)
            fail(options.keymapFile + ": " + std::to_string(leftOut) +
                 (leftOut == 1 ? " entry left out" : " entries left out"));
        settings->mode = options.mode;
        settings->forceExtended = options.forceExtended;
    }

    jvninput::Connection connection;
    if (!connection.open(options.socket, tries ? input::Role::tryOut : input::Role::observe, complaint))
        return fail(complaint);
    if (settings) connection.send(*settings);
    bool introduced = false;
    while (connection.receive(complaint)) {
        if (!connection.complete()) continue;
        if (!introduced) std::printf("%s\n", jvninput::summary(connection.state(), connection.keyboards()).c_str());
        introduced = true;
        if (options.command == Command::show) return 0;
        show(line(connection.state()));
    }
    return fail(complaint);
}

} // namespace

int main(int count, char** arguments) {
    seat::openMissingStandardDescriptors();
    std::string complaint;
    const auto options = jvninput::parseOptions({arguments + 1, arguments + count}, complaint);
    if (!options) {
        fail(complaint, misuse);
        std::fputs(jvninput::usage(), stderr);
        return misuse;
    }
    switch (options->command) {
    case jvninput::Command::help:
        std::fputs(jvninput::usage(), stdout);
        return 0;
    case jvninput::Command::version:
        std::puts("jvninput " JOYVANE_VERSION);
        return 0;
    default:
        return run(*options);
    }
}
