#include "system/preferences/PreferencesFile.h"

#include "platform/foundation/NSData.h"
#include "platform/foundation/NSPropertyListSerialization.h"
#include "system/files/Descriptor.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>

namespace seat {
namespace {

constexpr off_t largest = 4 << 20;

const char* kindName(mode_t mode) {
    if (S_ISDIR(mode)) return "a folder is in its place";
    if (S_ISFIFO(mode)) return "a pipe is in its place";
    if (S_ISSOCK(mode)) return "a socket is in its place";
    return "a device is in its place";
}

bool readAll(int descriptor, std::vector<std::uint8_t>& bytes) {
    std::size_t length = 0;
    while (length < bytes.size()) {
        const ssize_t count = ::read(descriptor, bytes.data() + length, bytes.size() - length);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return false;
        if (count == 0) break;
        length += static_cast<std::size_t>(count);
    }
    bytes.resize(length);
    return true;
}

bool sameMoment(const timespec& a, const timespec& b) { return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec; }

PreferencesFile unreadable(std::string reason) {
    PreferencesFile file;
    file.state = PreferencesFile::State::Unreadable;
    file.reason = std::move(reason);
    return file;
}

} // namespace

PreferencesFile PreferencesFile::read(int folder, const std::string& name) {
    PreferencesFile file;
    const Descriptor descriptor(openat(folder, name.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    if (!descriptor) {
        if (errno == ENOENT) return file;
        if (errno == ENXIO) return unreadable(kindName(S_IFSOCK));
        return unreadable(strerror(errno));
    }
    if (fstat(descriptor.get(), &file.status) != 0) return unreadable(strerror(errno));
    if (!S_ISREG(file.status.st_mode)) return unreadable(kindName(file.status.st_mode));

    file.state = State::Damaged;
    if (file.status.st_size > largest) {
        file.reason = "it is larger than 4 MiB";
        return file;
    }
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(file.status.st_size));
    if (!readAll(descriptor.get(), bytes)) return unreadable(strerror(errno));
    std::shared_ptr<NSError> error;
    const auto data = NSData::dataWithVector(std::move(bytes));
    const id root = NSPropertyListSerialization::propertyListWithData_options_format_error(*data, 0, nullptr, &error);
    file.values = root.object<NSMutableDictionary>();
    if (file.values)
        file.state = State::Good;
    else
        file.reason = error ? error->localizedDescription() : "it holds no dictionary";
    return file;
}

bool PreferencesFile::isUnchanged(int folder, const std::string& name) const {
    struct stat now {};
    if (fstatat(folder, name.c_str(), &now, 0) != 0) return state == State::Missing && errno == ENOENT;
    return state != State::Missing && now.st_dev == status.st_dev && now.st_ino == status.st_ino &&
           now.st_size == status.st_size && sameMoment(now.st_mtim, status.st_mtim);
}

} // namespace seat
