#pragma once

#include "app/Options.h"

namespace app {

// Shows the bundle's page (or plays its tour) until the user closes it. What becomes the process's exit code; reasons
// have gone to standard error.
int runApplication(const Options& options);

} // namespace app
