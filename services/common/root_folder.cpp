#include "services/common/root_folder.h"

#include "system/files/environment.h"

#include <filesystem>

namespace {

using seat::environment;

std::string defaultFolder() {
    const std::string data = environment("XDG_DATA_HOME");
    if (data.starts_with('/')) return data + "/joyvane";
    const std::string home = environment("HOME");
    return home.starts_with('/') ? home + "/.local/share/joyvane" : "";
}

} // namespace

std::string services::rootFolder(const std::string& given) {
    std::string root = given.empty() ? environment(rootVariable) : given;
    if (root.empty()) root = defaultFolder();
    if (root.empty()) return root;
    std::error_code error;
    root = std::filesystem::absolute(root, error).lexically_normal().string();
    while (root.size() > 1 && root.ends_with('/')) root.pop_back();
    return root;
}
