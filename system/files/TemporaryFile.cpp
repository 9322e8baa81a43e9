#include "system/files/TemporaryFile.h"

#include "system/files/uninterrupted.h"

#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <string_view>
#include <sys/file.h>
#include <sys/stat.h>

namespace {

using seat::Descriptor;
using seat::uninterrupted;

constexpr mode_t ownerOnly = 0600;
constexpr const char* mark = ".saving-";

// Empty without random numbers.
std::string randomSuffix() {
    static constexpr std::string_view letters = "abcdefghijklmnopqrstuvwxyz012345";
    unsigned char random[6];
    if (::getentropy(random, sizeof random) != 0) return {};
    std::string suffix = mark;
    for (const auto number : random) suffix += letters[number % letters.size()];
    return suffix;
}

// Between its making and its lock it may have been taken for a dead writer's, and removed.
bool isRemoved(int descriptor) {
    struct stat status {};
    return ::fstat(descriptor, &status) == 0 && status.st_nlink == 0;
}

void removeIfDead(int folder, const char* name) {
    const Descriptor file(uninterrupted(
        [&] { return ::openat(folder, name, O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY); }));
    if (!file || uninterrupted([&] { return ::flock(file.get(), LOCK_EX | LOCK_NB); }) != 0) return;
    // Its writer may have renamed it since it was opened here, and another have taken the name.
    struct stat opened {};
    struct stat named {};
    if (::fstat(file.get(), &opened) == 0 && ::fstatat(folder, name, &named, AT_SYMLINK_NOFOLLOW) == 0 &&
        S_ISREG(opened.st_mode) && opened.st_dev == named.st_dev && opened.st_ino == named.st_ino)
        ::unlinkat(folder, name, 0);
}

} // namespace

seat::TemporaryFile::TemporaryFile(int folder, const std::string& name) : m_folder(folder) {
    for (;;) {
        const std::string suffix = randomSuffix();
        m_name = name + suffix;
        if (!suffix.empty())
            m_descriptor.reset(uninterrupted([&] {
                return ::openat(folder, m_name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW,
                                ownerOnly);
            }));
        if (!m_descriptor && errno == EEXIST) continue;
        if (!m_descriptor) {
            m_error = errno;
            m_name.clear();
            return;
        }
        // On a file system without locks nobody gets one, and so nobody removes it either.
        uninterrupted([&] { return ::flock(m_descriptor.get(), LOCK_EX); });
        if (!isRemoved(m_descriptor.get())) return;
    }
}

seat::TemporaryFile::~TemporaryFile() {
    if (!m_name.empty()) ::unlinkat(m_folder, m_name.c_str(), 0);
}

int seat::TemporaryFile::renameTo(const std::string& name) {
    if (uninterrupted([&] { return ::renameat(m_folder, m_name.c_str(), m_folder, name.c_str()); }) != 0) return errno;
    m_name.clear();
    return 0;
}

void seat::removeDeadTemporaries(int folder, const std::string& name) {
    const std::string beginning = name + mark;
    Descriptor again(uninterrupted([&] { return ::openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
    const std::unique_ptr<DIR, int (*)(DIR*)> listing(again ? ::fdopendir(again.get()) : nullptr, ::closedir);
    if (!listing) return;
    again.release();
    while (const dirent* const entry = ::readdir(listing.get()))
        if (std::string_view(entry->d_name).starts_with(beginning)) removeIfDead(folder, entry->d_name);
}
