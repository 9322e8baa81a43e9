#include "system/files/TemporaryFile.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <random>
#include <sys/file.h>
#include <sys/stat.h>

namespace {

constexpr mode_t ownerOnly = 0600;
constexpr const char* mark = ".saving-";

std::string randomSuffix() {
    static constexpr char letters[] = "abcdefghijklmnopqrstuvwxyz0123456789";
    std::random_device random;
    std::uniform_int_distribution<std::size_t> pick(0, sizeof letters - 2);
    std::string suffix = mark;
    for (int i = 0; i < 6; ++i) suffix += letters[pick(random)];
    return suffix;
}

// Between its making and its lock it may have been taken for a dead writer's, and removed.
bool isRemoved(int descriptor) {
    struct stat status {};
    return ::fstat(descriptor, &status) == 0 && status.st_nlink == 0;
}

void removeIfDead(const std::string& path) {
    const seat::Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY));
    if (!file || ::flock(file.get(), LOCK_EX | LOCK_NB) != 0) return;
    // Its writer may have renamed it since it was opened here, and another have taken the name.
    struct stat opened {};
    struct stat named {};
    if (::fstat(file.get(), &opened) == 0 && ::lstat(path.c_str(), &named) == 0 && S_ISREG(opened.st_mode) &&
        opened.st_dev == named.st_dev && opened.st_ino == named.st_ino)
        ::unlink(path.c_str());
}

} // namespace

seat::TemporaryFile seat::TemporaryFile::createBeside(const std::string& path) {
    TemporaryFile made;
    for (;;) {
        made.path = path + randomSuffix();
        made.descriptor.reset(
            ::open(made.path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, ownerOnly));
        if (!made.descriptor && errno == EEXIST) continue;
        if (!made.descriptor) {
            made.error = errno;
            return made;
        }
        // On a file system without locks nobody gets one, and so nobody removes it either.
        while (::flock(made.descriptor.get(), LOCK_EX) != 0 && errno == EINTR) {
        }
        if (!isRemoved(made.descriptor.get())) return made;
    }
}

void seat::removeDeadTemporariesBeside(const std::string& path) {
    const std::filesystem::path file = path;
    const std::string beginning = file.filename().string() + mark;
    std::error_code error;
    const auto folder = file.has_parent_path() ? file.parent_path() : std::filesystem::path(".");
    for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error))
        if (entry->path().filename().string().starts_with(beginning)) removeIfDead(entry->path().string());
}
