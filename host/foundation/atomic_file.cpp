#include "host/foundation/atomic_file.h"

#include "host/foundation/Descriptor.h"
#include "host/foundation/files.h"
#include "platform/log.h"

#include <cerrno>
#include <fcntl.h>
#include <random>
#include <sys/stat.h>

namespace {

constexpr mode_t ownerOnly = 0600;
constexpr mode_t permissionBits = 07777;

std::string randomSuffix() {
    static constexpr char letters[] = "abcdefghijklmnopqrstuvwxyz0123456789";
    std::random_device random;
    std::uniform_int_distribution<std::size_t> pick(0, sizeof letters - 2);
    std::string suffix;
    for (int i = 0; i < 6; ++i) suffix += letters[pick(random)];
    return suffix;
}

// 0, or the error's number.
int writeAll(int descriptor, std::span<const std::uint8_t> bytes) {
    while (!bytes.empty()) {
        const auto count = ::write(descriptor, bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return errno;
        bytes = bytes.subspan(static_cast<std::size_t>(count));
    }
    return 0;
}

// The file has its new contents already; only a power cut could still bring back the old.
void flushFolderOf(const std::string& path) {
    const auto slash = path.rfind('/');
    const std::string folder = slash == std::string::npos ? "." : path.substr(0, slash + 1);
    const host::Descriptor descriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!descriptor || ::fsync(descriptor.get()) != 0)
        NSLog("%s", host::fileError("flushing the folder", folder, errno)->localizedDescription().c_str());
}

} // namespace

std::shared_ptr<NSError> host::writeFileAtomically(const std::string& path, std::span<const std::uint8_t> bytes) {
    struct stat existing {};
    const bool exists = ::stat(path.c_str(), &existing) == 0;
    // Renaming would say so as well, but only after all the writing.
    if (exists && !S_ISREG(existing.st_mode))
        return fileError("writing", path, S_ISDIR(existing.st_mode) ? EISDIR : EINVAL);

    std::string temporary;
    Descriptor file;
    do {
        temporary = path + "." + randomSuffix();
        file.reset(::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, ownerOnly));
    } while (!file && errno == EEXIST);
    if (!file) return fileError("creating", temporary, errno);

    int number = writeAll(file.get(), bytes);
    if (number == 0 && exists && ::fchmod(file.get(), existing.st_mode & permissionBits) != 0) number = errno;
    if (number == 0 && ::fsync(file.get()) != 0) number = errno;
    if (number == 0 && ::rename(temporary.c_str(), path.c_str()) != 0) number = errno;
    if (number != 0) {
        ::unlink(temporary.c_str());
        return fileError("writing", path, number);
    }
    flushFolderOf(path);
    return nullptr;
}

std::shared_ptr<NSError> host::writeFile(const std::string& path, std::span<const std::uint8_t> bytes) {
    // A pipe that nobody reads fails at once instead of waiting.
    const Descriptor file(
        ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, ownerOnly));
    if (!file) return fileError("writing", path, errno);
    const int number = writeAll(file.get(), bytes);
    return number == 0 ? nullptr : fileError("writing", path, number);
}
