#include "services/jvndiscovery/options.h"

#include "services/bluetooth/clients.h"

#include <string_view>

namespace jvndiscovery {
namespace {

constexpr const char* usage = R"(Usage: jvndiscovery [OPTIONS]

Searches for a game controller over Bluetooth, pairs with it, connects it and stores
its address for the Joyvane page, which starts this program and is told how far it is.
It searches until it has found one or is interrupted.

  --root DIR   the folder that stands for the phone's file system
               (default: JOYVANE_ROOT of the environment, else the user's data folder)
  --simulate   simulated controllers instead of Bluetooth; also when the environment's
               JOYVANE_SIMULATE is 1
  --help, -h   this text
  --version    the version

Ends with 0 when a controller is paired or on an interruption, 1 when there is no
Bluetooth or the preferences cannot be read, 2 for a controller type that is not paired
over Bluetooth and for a wrong command line.

)";

} // namespace

CommandLine parseCommandLine(std::span<const char* const> arguments) {
    CommandLine line;
    for (std::size_t i = 0; i < arguments.size() && line.problem.empty(); ++i) {
        const std::string_view argument = arguments[i];
        if (argument == "--help" || argument == "-h") {
            line.showsHelp = true;
        } else if (argument == "--version") {
            line.showsVersion = true;
        } else if (argument == "--simulate") {
            line.simulates = true;
        } else if (argument == "--root" && i + 1 < arguments.size()) {
            line.root = arguments[++i];
        } else if (argument.starts_with("--root=")) {
            line.root = argument.substr(argument.find('=') + 1);
        } else if (argument == "--root") {
            line.problem = "--root needs a folder";
        } else {
            line.problem = "unknown argument \"" + std::string(argument) + "\"";
        }
        if (argument.starts_with("--root") && line.problem.empty() && line.root.empty())
            line.problem = "--root needs a folder";
    }
    return line;
}

std::string helpText() { return std::string(usage) + bluetooth::simulatedWorldHelp; }

} // namespace jvndiscovery
