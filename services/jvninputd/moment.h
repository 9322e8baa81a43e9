#pragma once

#include "services/common/Clock.h"

namespace jvninputd {

// Whoever needs the time is given it, so that tests hold it.
using services::Moment;
using Duration = std::chrono::microseconds;

} // namespace jvninputd
