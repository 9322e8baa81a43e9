#pragma once

#include "platform/quartz/CGImage.h"

namespace seat {

class WindowScene;

// What the scene shows now, in its pixels; layout is brought up to date first.
CGImageRef snapshot(WindowScene& scene);

} // namespace seat
