#pragma once

#include <span>
#include <string>

namespace jvndiscovery {

struct CommandLine {
    std::string root; // empty: the page's, else the user's
    bool simulates = false;
    bool showsHelp = false;
    bool showsVersion = false;
    std::string problem; // empty when all went well; else one sentence
};

// `arguments` without the program's name. An option's value may follow as the next argument or after "=".
CommandLine parseCommandLine(std::span<const char* const> arguments);

// What --help prints.
std::string helpText();

} // namespace jvndiscovery
