#pragma once

// The command line of joyvane-settings.

#include <optional>
#include <span>
#include <string>

#include "platform/quartz/CGGeometry.h"

namespace app {

enum ExitCode : int {
    ExitSuccess = 0,
    ExitFailure = 1,
    ExitNoDisplay = 2,
    ExitUsage = 3,
    ExitBundleRefused = 4,
};

inline constexpr double tourScale = 2;                // pixels a point, where no scale is given
inline constexpr double mostPixels = 7680.0 * 4320.0; // of a window or a picture: 130 MB

struct Options {
    std::string root;                                  // empty: the user's data folder
    std::string bundle;                                // empty: looked for beside the program
    std::string tour;                                  // empty: no tour
    std::string inputSocket = "/run/jvninputd.socket"; // where the input service listens
    CGSize size{384, 667};                             // points; the colour field's tiles fill this width
    bool isSizeGiven = false;                          // else a window takes the size that it had
    double scale = 0;                                  // 0: the screen's
    bool simulate = false;
    bool showHelp = false;
    bool showVersion = false;
};

struct ParsedOptions {
    Options options;
    std::string problem; // empty when all went well; else one sentence
};

// Whether a window, or a picture of the page, can have this size in points: 320x240 to 16384x16384.
bool isWindowSize(CGSize size);

// `arguments` without the program's name. An option's value may follow as the next argument or after "=".
ParsedOptions parseOptions(std::span<const char* const> arguments);

// What --help prints.
std::string helpText();

} // namespace app
