#pragma once

namespace app {

// Whether the user of this root has been told what the program is: noted in the root when the screen that tells it is
// put away for the first time.
bool isIntroduced();
// What cannot be noted is logged, and told again at the next start.
void setIntroduced();

} // namespace app
