#include "app/own_programs.h"

#include <filesystem>
#include <system_error>
#include <unistd.h>

std::string app::ownProgram(const std::string& name) {
    namespace fs = std::filesystem;
    std::error_code error;
    const fs::path programs = fs::read_symlink("/proc/self/exe", error).parent_path();
    for (const auto& place : {programs / name, programs.parent_path() / "lib/joyvane" / name})
        if (access(place.c_str(), X_OK) == 0) return place.string();
    return {};
}
