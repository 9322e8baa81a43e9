#include "system/files/trusted_file.h"

#include "system/files/uninterrupted.h"

#include <cerrno>
#include <climits>
#include <cstring>
#include <fcntl.h>
#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>
#include <vector>

namespace {

using seat::Descriptor;

constexpr std::size_t longestEntry = 1 << 16; // of a user or a group, with its members

struct User {
    std::string name;
    gid_t group = 0;
};

// Nobody without a name when the system does not know the user.
User userOf(uid_t identifier) {
    passwd entry{};
    passwd* found = nullptr;
    std::vector<char> text(longestEntry);
    if (::getpwuid_r(identifier, &entry, text.data(), text.size(), &found) != 0 || !found) return {};
    return {found->pw_name, found->pw_gid};
}

// Where each user gets a group of his own, what he makes may be that group's to write, and is nobody else's all the
// same.
bool isAloneInGroup(uid_t identifier, gid_t group) {
    const User user = userOf(identifier);
    ::group entry{};
    ::group* found = nullptr;
    std::vector<char> text(longestEntry);
    if (user.name.empty() || user.group != group ||
        ::getgrgid_r(group, &entry, text.data(), text.size(), &found) != 0 || !found || user.name != found->gr_name)
        return false;
    for (char** member = found->gr_mem; member && *member; ++member)
        if (user.name != *member) return false;
    return true;
}

std::string pathOf(int folder) {
    char path[PATH_MAX];
    const auto length = ::readlink(("/proc/self/fd/" + std::to_string(folder)).c_str(), path, sizeof path);
    return length > 0 ? std::string(path, static_cast<std::size_t>(length)) : "a folder above it";
}

bool isSame(const struct stat& a, const struct stat& b) { return a.st_dev == b.st_dev && a.st_ino == b.st_ino; }

// What is wrong with a folder or one above it; upwards by what is above, whatever paths lead there.
std::string problemUpwards(const Descriptor& lowest) {
    struct stat status {};
    if (::fstat(lowest.get(), &status) != 0) return ::strerrordesc_np(errno);
    Descriptor above;
    for (int folder = lowest.get();;) {
        // Where everybody may write but nobody take away, what leads here stays.
        if (folder != lowest.get() && status.st_mode & S_ISVTX) status.st_mode &= ~(S_IWOTH | S_IWGRP);
        if (const auto hand = seat::foreignHand(status); !hand.empty()) return pathOf(folder) + ", which " + hand;
        Descriptor next(::openat(folder, "..", O_PATH | O_DIRECTORY | O_CLOEXEC));
        struct stat upper {};
        if (!next || ::fstat(next.get(), &upper) != 0) return pathOf(folder) + ", above which nothing can be seen";
        if (isSame(status, upper)) return {};
        above = std::move(next);
        folder = above.get();
        status = upper;
    }
}

std::string words(int error) {
    if (error == ENOENT) return "is missing";
    if (error == ELOOP) return "is a link";
    return std::string("cannot be read: ") + ::strerrordesc_np(error);
}

} // namespace

std::string seat::foreignHand(const struct stat& status) {
    if (status.st_uid != ::geteuid() && status.st_uid != 0) {
        const std::string name = userOf(status.st_uid).name;
        return "belongs to " + (name.empty() ? "user " + std::to_string(status.st_uid) : name);
    }
    if (status.st_mode & S_IWOTH) return "may be changed by everybody";
    if (status.st_mode & S_IWGRP && !isAloneInGroup(status.st_uid, status.st_gid))
        return "may be changed by a group of users";
    return {};
}

Descriptor seat::openTrustedFile(const std::string& path, std::string& problem) {
    const std::size_t slash = path.rfind('/');
    std::string folderName = slash == std::string::npos ? "." : path.substr(0, slash);
    // Behind a slash a link would be followed.
    while (folderName.size() > 1 && folderName.ends_with('/')) folderName.pop_back();
    if (folderName.empty()) folderName = "/";
    const auto refuse = [&problem](std::string reason) {
        problem = std::move(reason);
        return Descriptor();
    };

    const Descriptor folder(uninterrupted([&] { return ::open(folderName.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC); }));
    if (!folder) return refuse(words(errno));
    struct stat status {};
    if (::fstat(folder.get(), &status) != 0) return refuse(words(errno));
    if (S_ISLNK(status.st_mode)) return refuse("stands in " + folderName + ", which is a link");
    if (const auto reason = problemUpwards(folder); !reason.empty()) return refuse("stands in " + reason);

    // A pipe in the file's place must not make us wait.
    constexpr int flags = O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
    const std::string name = slash == std::string::npos ? path : path.substr(slash + 1);
    Descriptor file(uninterrupted([&] { return ::openat(folder.get(), name.c_str(), flags); }));
    if (!file || ::fstat(file.get(), &status) != 0) return refuse(words(errno));
    if (!S_ISREG(status.st_mode)) return refuse("is no regular file");
    if (const auto hand = foreignHand(status); !hand.empty()) return refuse(hand);
    return file;
}
