#include "app/own_programs.h"

#include "platform/log.h"
#include "system/process/child_environment.h"
#include "system/process/children.h"
#include "system/process/spawn.h"

#include <cstring>
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

std::string app::ownDocument(const std::string& name) {
    namespace fs = std::filesystem;
    std::error_code error;
    const fs::path above = fs::read_symlink("/proc/self/exe", error).parent_path().parent_path();
    // As it is installed, and in a build.
    for (const auto& place : {above / "share/doc/joyvane" / name, above / "packaging" / name})
        if (access(place.c_str(), R_OK) == 0) return place.string();
    return {};
}

void app::openTrial(const std::string& bundleFolder) {
    static bool isOpen = false;
    if (isOpen) return;
    std::error_code error;
    const std::string program = std::filesystem::read_symlink("/proc/self/exe", error).string();
    auto child = seat::spawn(seat::ChildKind::Program, program, {"--simulate", "--bundle", bundleFolder},
                             seat::childEnvironment(), std::chrono::milliseconds(20));
    if (child.identifier == 0) return NSLog("%s could not be started: %s", program.c_str(), std::strerror(child.error));
    isOpen = true;
    seat::adoptChild(
        std::move(child), [](int) { isOpen = false; }, [](const seat::ChildEnd&) { isOpen = false; });
}
