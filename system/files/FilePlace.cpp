#include "system/files/FilePlace.h"

#include "system/files/uninterrupted.h"

#include <climits>
#include <cstring>
#include <fcntl.h>

namespace {

using seat::Descriptor;
using seat::FilePlace;

constexpr int mostLinks = 40; // as many as the kernel follows

void refuse(FilePlace& place, int number, const char* reason) {
    place.error = number;
    place.reason = reason;
}
void refuse(FilePlace& place, int number) { refuse(place, number, ::strerror(number)); }

bool sameMoment(const timespec& a, const timespec& b) { return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec; }

// Opens the folder of a path, which may be relative to the place's present one.
bool enter(FilePlace& place, const std::string& path) {
    const std::size_t slash = path.rfind('/');
    const std::string folder = slash == std::string::npos ? "." : path.substr(0, slash + 1);
    const int from = place.folder ? place.folder.get() : AT_FDCWD;
    Descriptor opened(
        seat::uninterrupted([&] { return ::openat(from, folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
    if (!opened) {
        refuse(place, errno);
        return false;
    }
    place.folder = std::move(opened);
    place.name = slash == std::string::npos ? path : path.substr(slash + 1);
    return true;
}

// Where a link of ours leads; empty, and the place refused, for another's.
std::string targetOf(FilePlace& place) {
    if (place.status.st_uid != ::geteuid()) {
        refuse(place, EPERM, "it is a link that another user has made");
        return {};
    }
    char target[PATH_MAX];
    const auto length = ::readlinkat(place.folder.get(), place.name.c_str(), target, sizeof target);
    if (length <= 0) refuse(place, length < 0 ? errno : ENOENT);
    return {target, length < 0 ? 0 : static_cast<std::size_t>(length)};
}

// After links, what is written must be this user's: the file, or the folder in which it is to be made.
void checkTarget(FilePlace& place) {
    struct stat owner = place.status;
    if (!place.exists && ::fstat(place.folder.get(), &owner) != 0) return refuse(place, errno);
    if (owner.st_uid != ::geteuid()) refuse(place, EPERM, "it is a link to what is another user's");
}

} // namespace

const char* seat::obstacleName(mode_t mode) {
    if (S_ISREG(mode)) return nullptr;
    if (S_ISDIR(mode)) return "a folder is in its place";
    if (S_ISFIFO(mode)) return "a pipe is in its place";
    if (S_ISSOCK(mode)) return "a socket is in its place";
    return "a device is in its place";
}

bool seat::isSameVersion(const struct stat& a, const struct stat& b) {
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino && a.st_size == b.st_size && sameMoment(a.st_mtim, b.st_mtim);
}

FilePlace FilePlace::find(const std::string& path) {
    FilePlace place;
    std::string next = path;
    for (int links = 0; links <= mostLinks; ++links) {
        if (!enter(place, next)) return place;
        place.exists = ::fstatat(place.folder.get(), place.name.c_str(), &place.status, AT_SYMLINK_NOFOLLOW) == 0;
        if (!place.exists && errno != ENOENT) {
            refuse(place, errno);
        } else if (place.exists && S_ISLNK(place.status.st_mode)) {
            next = targetOf(place);
            if (place.error == 0) continue;
        } else if (const char* const obstacle = place.exists ? obstacleName(place.status.st_mode) : nullptr) {
            refuse(place, S_ISDIR(place.status.st_mode) ? EISDIR : EINVAL, obstacle);
        } else if (links > 0) {
            checkTarget(place);
        }
        return place;
    }
    refuse(place, ELOOP);
    return place;
}
