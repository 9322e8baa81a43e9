#pragma once

namespace jvnd {

enum ExitCode : int {
    exitSuccess = 0,
    exitFailure = 1,
    exitUsage = 2,
    exitRestart = 3, // the service manager starts us again; packaging/jvnd.service names it
};

} // namespace jvnd
