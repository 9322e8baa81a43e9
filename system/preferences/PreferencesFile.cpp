#include "system/preferences/PreferencesFile.h"

#include "kit/foundation/property_list.h"
#include "platform/foundation/NSData.h"
#include "system/files/Descriptor.h"
#include "system/files/FilePlace.h"
#include "system/files/uninterrupted.h"

#include <cstring>
#include <fcntl.h>

namespace seat {
namespace {

bool readAll(int descriptor, std::vector<std::uint8_t>& bytes) {
    std::size_t length = 0;
    while (length < bytes.size()) {
        const ssize_t count =
            uninterrupted([&] { return ::read(descriptor, bytes.data() + length, bytes.size() - length); });
        if (count < 0) return false;
        if (count == 0) break;
        length += static_cast<std::size_t>(count);
    }
    bytes.resize(length);
    return true;
}

PreferencesFile unreadable(const char* reason) {
    PreferencesFile file;
    file.state = PreferencesFile::State::Unreadable;
    file.reason = reason;
    return file;
}

} // namespace

PreferencesFile PreferencesFile::read(int folder, const std::string& name) {
    PreferencesFile file;
    constexpr int flags = O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
    const Descriptor descriptor(uninterrupted([&] { return ::openat(folder, name.c_str(), flags); }));
    if (!descriptor) {
        if (errno == ENOENT) return file;
        return unreadable(errno == ENXIO ? obstacleName(S_IFSOCK) : strerror(errno));
    }
    if (::fstat(descriptor.get(), &file.status) != 0) return unreadable(strerror(errno));
    if (const char* const obstacle = obstacleName(file.status.st_mode)) return unreadable(obstacle);
    if (std::cmp_greater(file.status.st_size, propertyListMaximumLength)) {
        file.state = State::TooLarge;
        file.reason = "it is larger than 4 MiB";
        return file;
    }
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(file.status.st_size));
    if (!readAll(descriptor.get(), bytes)) return unreadable(strerror(errno));
    std::string refusal;
    const id root = readPropertyList(bytes, nullptr, refusal);
    file.values = root.object<NSMutableDictionary>();
    if (file.values) {
        file.state = State::Good;
        return file;
    }
    file.state = isBeyondPropertyListBounds(refusal) ? State::TooLarge : State::Damaged;
    file.reason = root ? "it holds no dictionary" : "it " + refusal;
    return file;
}

bool PreferencesFile::isUnchanged(int folder, const std::string& name) const {
    struct stat now {};
    if (::fstatat(folder, name.c_str(), &now, 0) != 0) return state == State::Missing && errno == ENOENT;
    return state != State::Missing && isSameVersion(now, status);
}

} // namespace seat
