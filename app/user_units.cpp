#include "app/user_units.h"

#include "kit/dispatch/main_queue.h"
#include "system/process/child_environment.h"
#include "system/process/children.h"
#include "system/process/spawn.h"

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <filesystem>

namespace {

constexpr std::chrono::milliseconds loadingTimeout{20};

void tellServiceManager(const char* command, const std::string& unit,
                        const std::function<void(const std::string& reason)>& done) {
    auto child = seat::spawn(seat::ChildKind::Tool, "/usr/bin/env", {"systemctl", "--user", command, unit},
                             seat::childEnvironment(), loadingTimeout);
    if (child.identifier == 0)
        return seat::queueOnMain([done, reason = std::string(std::strerror(child.error))] { done(reason); });
    seat::adoptChild(std::move(child), {}, [done](const seat::ChildEnd& end) {
        done(end.exitCode == 0 ? std::string() : "the service manager's tool " + end.description);
    });
}

} // namespace

bool app::isUserUnit(const std::string& unit) {
    const char* const home = std::getenv("HOME");
    for (const std::string& folder :
         {std::string("/usr/lib/systemd/user/"), std::string("/usr/local/lib/systemd/user/"),
          std::string("/etc/systemd/user/"), std::string(home ? home : "") + "/.config/systemd/user/"}) {
        std::error_code error;
        if (std::filesystem::exists(folder + unit, error)) return true;
    }
    return false;
}

void app::startUserUnit(const std::string& unit, std::function<void(const std::string& reason)> started) {
    tellServiceManager("start", unit, started);
}

void app::restartUserUnit(const std::string& unit, std::function<void(const std::string& reason)> started) {
    tellServiceManager("restart", unit, started);
}
