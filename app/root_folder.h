#pragma once

#include <string>

namespace app {

// What is kept in it: the user's settings, or those of a trial with simulated controllers.
enum class RootUse { Settings, Trial };

// Chooses the folder that stands for the phone's file system, makes it where it is missing, and sets it. `given`: the
// user's choice; empty: "joyvane" in the user's data folder, for a trial "joyvane-trial" in the folder that goes with
// the user's session (in the data folder where there is none). Its tools are run and its settings believed, so it must
// be this user's, and no part of the way to the one that nobody chose may be anybody's but this user's and the
// administrator's. Empty, or one sentence that says why there is none. For the administrator it says on standard error
// whose settings these are.
std::string settleRoot(const std::string& given, RootUse use = RootUse::Settings);

} // namespace app
