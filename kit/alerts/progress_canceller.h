#pragma once

#include <functional>

namespace seat {

// What a user's Cancel does to the work behind a progress panel: its button, and an Escape while it is shown. The
// application's to set; while there is none (empty, as at first) panels have no button and leave Escape alone. A panel
// looks when it is shown. Main thread.
void setProgressCanceller(std::function<void()> cancel);

} // namespace seat
