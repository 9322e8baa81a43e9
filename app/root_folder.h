#pragma once

#include <string>

namespace app {

// What is kept in it: the user's settings, those of a trial with simulated controllers, or what one tour through such a
// trial stores.
enum class RootUse { Settings, Trial, Tour };

// Chooses the folder that stands for the phone's file system, makes it where it is missing, and sets it. `given`: the
// user's choice; empty: "joyvane" in the user's data folder, for a trial "joyvane-trial" in the folder that goes with
// the user's session (in the data folder where there is none), for a tour a new one beside that, to be removed at the
// end. Its tools are run and its settings believed, so it must be this user's and nobody else's to change, and no part
// of the way to the one that nobody chose, or to any that is the administrator's, may be anybody's but this user's and
// the administrator's. Empty, or one sentence that says why there is none. For the administrator it says on standard
// error whose settings these are.
std::string settleRoot(const std::string& given, RootUse use = RootUse::Settings);

} // namespace app
