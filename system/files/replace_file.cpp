#include "system/files/replace_file.h"

#include "platform/log.h"
#include "system/files/TemporaryFile.h"
#include "system/files/owner.h"
#include "system/files/uninterrupted.h"

#include <cstring>

namespace {

using namespace seat;

constexpr mode_t permissionBits = 07777;

// Whoever could read or write the file still can, and nobody else.
int adopt(int file, const FilePlace& place) {
    if (!place.exists) return settleMade(file, 0600, place.folder.get());
    struct stat made {};
    if (::fstat(file, &made) != 0) return errno;
    const struct stat& old = place.status;
    const bool isOwned = made.st_uid == old.st_uid && made.st_gid == old.st_gid;
    if (!isOwned && uninterrupted([&] { return ::fchown(file, old.st_uid, old.st_gid); }) != 0) return errno;
    return uninterrupted([&] { return ::fchmod(file, old.st_mode & permissionBits); }) == 0 ? 0 : errno;
}

int flush(int descriptor) {
    return uninterrupted([&] { return ::fsync(descriptor); }) == 0 ? 0 : errno;
}

} // namespace

int seat::writeAll(int descriptor, std::span<const std::uint8_t> bytes) {
    while (!bytes.empty()) {
        const auto count = uninterrupted([&] { return ::write(descriptor, bytes.data(), bytes.size()); });
        if (count < 0) return errno;
        bytes = bytes.subspan(static_cast<std::size_t>(count));
    }
    return 0;
}

int seat::replaceFile(const FilePlace& place, std::span<const std::uint8_t> bytes,
                      const std::function<bool()>& isStillRight) {
    removeDeadTemporaries(place.folder.get(), place.name);
    TemporaryFile temporary(place.folder.get(), place.name);
    int number = temporary.error();
    if (number == 0) number = writeAll(temporary.descriptor(), bytes);
    if (number == 0) number = adopt(temporary.descriptor(), place);
    if (number == 0) number = flush(temporary.descriptor());
    if (number == 0 && isStillRight && !isStillRight()) number = ESTALE;
    if (number == 0) number = temporary.renameTo(place.name);
    if (number != 0) return number;
    // The file has its new contents already; only a power cut could still bring back the old.
    if (const int unsafe = flush(place.folder.get()))
        NSLog("flushing the folder of %s: %s", place.name.c_str(), ::strerror(unsafe));
    return 0;
}
