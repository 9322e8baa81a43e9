#pragma once

#include "platform/foundation/time.h"

namespace host {

// Where the one clock takes its time from.
class ClockSource {
public:
    virtual ~ClockSource() = default;
    // Seconds that never go back.
    virtual double mediaTime() const = 0;
    virtual platform::timeval timeOfDay() const = 0;
};

// Non-owning; nullptr brings back the system's clock. The source must outlive its use, and is read from any thread.
void setClockSource(const ClockSource* source);

// True while a source other than the system's is set: time then passes only when somebody says so.
bool clockIsHeld();

} // namespace host
