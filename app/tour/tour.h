#pragma once

#include "app/Bundle.h"
#include "app/Options.h"

namespace seat {
class Toolkit;
}

namespace app {

class Simulation;

// Shows the bundle's page to nobody and follows the bundle's "tour.txt"; pictures and the log go to the tour's folder,
// which is made. ExitSuccess when every step could be done; else ExitFailure, the step has been named on standard error
// and a picture shows where it stood.
int playTour(seat::Toolkit& toolkit, const Options& options, const Bundle& bundle, Class principalClass,
             Simulation& simulation);

} // namespace app
