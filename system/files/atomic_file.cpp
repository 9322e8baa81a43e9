#include "system/files/atomic_file.h"

#include "platform/log.h"
#include "system/files/Descriptor.h"
#include "system/files/TemporaryFile.h"
#include "system/files/files.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>

namespace {

constexpr mode_t ownerOnly = 0600;
constexpr mode_t permissionBits = 07777;

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
    const seat::Descriptor descriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!descriptor || ::fsync(descriptor.get()) != 0)
        NSLog("%s", seat::fileError("flushing the folder", folder, errno)->localizedDescription().c_str());
}

} // namespace

std::shared_ptr<NSError> seat::writeFileAtomically(const std::string& path, std::span<const std::uint8_t> bytes) {
    struct stat existing {};
    const bool exists = ::stat(path.c_str(), &existing) == 0;
    // Renaming would say so as well, but only after all the writing.
    if (exists && !S_ISREG(existing.st_mode))
        return fileError("writing", path, S_ISDIR(existing.st_mode) ? EISDIR : EINVAL);

    removeDeadTemporariesBeside(path);
    const TemporaryFile temporary = TemporaryFile::createBeside(path);
    if (!temporary.descriptor) return fileError("creating", temporary.path, temporary.error);
    const int file = temporary.descriptor.get();

    int number = writeAll(file, bytes);
    if (number == 0 && exists && ::fchmod(file, existing.st_mode & permissionBits) != 0) number = errno;
    if (number == 0 && ::fsync(file) != 0) number = errno;
    if (number == 0 && ::rename(temporary.path.c_str(), path.c_str()) != 0) number = errno;
    if (number != 0) {
        ::unlink(temporary.path.c_str());
        return fileError("writing", path, number);
    }
    flushFolderOf(path);
    return nullptr;
}

std::shared_ptr<NSError> seat::writeFile(const std::string& path, std::span<const std::uint8_t> bytes) {
    // A pipe that nobody reads fails at once instead of waiting.
    const Descriptor file(
        ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, ownerOnly));
    if (!file) return fileError("writing", path, errno);
    const int number = writeAll(file.get(), bytes);
    return number == 0 ? nullptr : fileError("writing", path, number);
}
