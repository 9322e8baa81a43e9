#pragma once

#include <string>

namespace app {

// Why something failed, as a notice says it: what the parts below say in English is in the user's language as far as
// the catalogues have it, part by part ("its folder: Permission denied"). Names of files and numbers stay.
std::string reasonInUsersWords(const std::string& reason);

} // namespace app
