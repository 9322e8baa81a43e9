#include "app/root_folder.h"

#include "platform/log.h"
#include "system/files/environment.h"
#include "system/files/make_folders.h"
#include "system/files/root.h"
#include "system/files/trusted_file.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <pwd.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

struct DataFolder {
    std::string home; // what the user calls his own; empty when there is nothing
    std::string below;
};

DataFolder userDataFolder() {
    if (const auto data = seat::environment("XDG_DATA_HOME"); data.starts_with('/')) return {data, "/joyvane"};
    std::string home = seat::environment("HOME");
    if (!home.starts_with('/')) {
        const passwd* const user = ::getpwuid(::getuid());
        home = user && user->pw_dir ? user->pw_dir : "";
    }
    return {home.starts_with('/') ? home : std::string(), "/.local/share/joyvane"};
}

DataFolder chosenFolder(app::RootUse use) {
    if (use == app::RootUse::Settings) return userDataFolder();
    const std::string kind = use == app::RootUse::Tour ? "-tour" : "-trial";
    if (const auto session = seat::environment("XDG_RUNTIME_DIR"); session.starts_with('/'))
        return {session, "/joyvane" + kind};
    DataFolder folder = userDataFolder();
    folder.below += kind;
    return folder;
}

// Makes a folder that was not there before, by that name and something behind it. 0, or the number of what went wrong.
int makeNewFolder(std::string& folder) {
    if (const int number = seat::makeFolders(fs::path(folder).parent_path())) return number;
    folder += "-XXXXXX";
    return ::mkdtemp(folder.data()) ? 0 : errno;
}

std::string nameOf(uid_t owner) {
    const passwd* const user = ::getpwuid(owner);
    return user ? user->pw_name : "user " + std::to_string(owner);
}

// What is there of the way to a folder, from the folder upwards: nobody else may put another one in its place. Where
// everybody may write, what is there stays its owner's if the folder is marked so; but it is nobody's home.
std::string problemOnTheWay(const std::string& root, const std::string& home) {
    for (fs::path part = root;; part = part.parent_path()) {
        struct stat status {};
        if (::stat(part.c_str(), &status) == 0) {
            if (status.st_uid != ::geteuid() && status.st_uid != 0)
                return part.string() + " belongs to " + nameOf(status.st_uid);
            if (status.st_mode & S_IWOTH && (part == home || !(status.st_mode & S_ISVTX)))
                return "everybody may write to " + part.string();
        }
        if (part == part.root_path() || part.empty()) return {};
    }
}

// Whose it is, and who else could change what is in it.
std::string ownerProblem(const std::string& root) {
    struct stat status {};
    if (::stat(root.c_str(), &status) != 0) return {};
    if (status.st_uid == ::geteuid()) {
        const std::string hand = seat::foreignHand(status);
        return hand.empty() ? hand : "it " + hand + "; give a folder of your own with --root";
    }
    const std::string owner = nameOf(status.st_uid);
    if (::geteuid() == 0)
        return "it belongs to " + owner + ", and this was started as the administrator: start it as " + owner +
               ", or give a folder of the administrator's own with --root";
    return "it belongs to " + owner + "; give a folder of your own with --root";
}

std::string normal(const fs::path& path) {
    std::string text = path.lexically_normal().string();
    while (text.size() > 1 && text.ends_with('/')) text.pop_back();
    return text;
}

std::string describe(int number) { return std::generic_category().message(number); }

} // namespace

std::string app::settleRoot(const std::string& given, RootUse use) {
    const DataFolder data = given.empty() ? chosenFolder(use) : DataFolder();
    if (given.empty() && data.home.empty())
        return "root: there is no home folder; set HOME, or give a folder with --root";
    std::error_code error;
    std::string root = normal(fs::absolute(given.empty() ? data.home + data.below : given, error));
    if (error) return "root " + given + ": the current folder cannot be found: " + error.message();
    const auto problem = [&root](const std::string& reason) { return "root " + root + ": " + reason; };
    if (const auto reason = ownerProblem(root); !reason.empty()) return problem(reason); // if it is there
    // On the way to what somebody has chosen for himself others may be at home; but not on the administrator's.
    if (given.empty() || ::geteuid() == 0)
        if (const auto reason = problemOnTheWay(root, given.empty() ? normal(data.home) : root); !reason.empty())
            return problem(reason + "; give a folder of your own with --root");
    const bool isNew = given.empty() && use == RootUse::Tour;
    if (const int number = isNew ? makeNewFolder(root) : seat::makeFolders(root)) return problem(describe(number));
    if (::access(root.c_str(), R_OK | X_OK) != 0) return problem(describe(errno));
    if (const auto reason = ownerProblem(root); !reason.empty()) return problem(reason);
    if (::geteuid() == 0 && given.empty() && use == RootUse::Settings)
        NSLog("started as the administrator: the settings are the administrator's own, in %s, and no other user's",
              root.c_str());
    seat::setRoot(root);
    return {};
}
