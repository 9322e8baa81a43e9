#pragma once

#include <filesystem>

namespace jvnd {

// Each folder of the path that is missing, for this user alone. Failures show where the folder is used.
void makeFolders(const std::filesystem::path& folder);

} // namespace jvnd
