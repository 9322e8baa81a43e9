#include "services/jvnd/options.h"

#include "services/bluetooth/clients.h"

#include <string_view>

namespace jvnd {

CommandLine parseCommandLine(std::span<const char* const> arguments) {
    CommandLine line;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string_view argument = arguments[i];
        const auto equals = argument.starts_with("--") ? argument.find('=') : std::string_view::npos;
        const std::string name(argument.substr(0, equals));
        std::string* const value = name == "--root"           ? &line.root
                                   : name == "--input-socket" ? &line.inputSocket
                                                              : nullptr;
        bool* const flag = name == "--simulate"               ? &line.simulates
                           : name == "--trace"                ? &line.traces
                           : name == "--help" || name == "-h" ? &line.showsHelp
                           : name == "--version"              ? &line.showsVersion
                                                              : nullptr;
        if (flag && equals == std::string_view::npos)
            *flag = true;
        else if (value && equals != std::string_view::npos)
            *value = argument.substr(equals + 1);
        else if (value && i + 1 < arguments.size())
            *value = arguments[++i];
        else
            line.problem = value ? name + " takes a value" : flag ? name + " takes no value" : name + " is no option";
        if (value && value->empty() && line.problem.empty()) line.problem = name + " takes a value";
        if (!line.problem.empty()) break;
    }
    return line;
}

std::string helpText() {
    return std::string(
               "Usage: jvnd [--root DIR] [--simulate] [--trace] [--input-socket PATH]\n"
               "\n"
               "Joyvane's daemon: connects controllers, sets their light, and says which keys play which buttons.\n"
               "It belongs to a user's session, where the service manager starts it; nothing has to be said to it.\n"
               "\n"
               "  --root DIR           the folder with the settings and the control socket; otherwise what\n"
               "                       JOYVANE_ROOT says, else joyvane in the user's data folder\n"
               "  --simulate           simulated controllers instead of the computer's; ends with the pipe on its\n"
               "                       standard input\n"
               "  --trace              says each frame, reply, notification and change in a line\n"
               "  --input-socket PATH  where jvninputd is reached\n"
               "  --help, --version\n"
               "\n") +
           bluetooth::simulatedWorldHelp;
}

} // namespace jvnd
