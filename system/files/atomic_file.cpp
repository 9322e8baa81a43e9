#include "system/files/atomic_file.h"

#include "system/files/files.h"
#include "system/files/replace_file.h"
#include "system/files/uninterrupted.h"

#include <fcntl.h>

std::shared_ptr<NSError> seat::writeFileAtomically(const std::string& path, std::span<const std::uint8_t> bytes) {
    const auto place = FilePlace::find(path);
    if (place.error != 0) return NSError::errorWithDescription("writing " + path + ": " + place.reason, place.error);
    const int number = replaceFile(place, bytes);
    return number == 0 ? nullptr : fileError("writing", path, number);
}

std::shared_ptr<NSError> seat::writeFile(const std::string& path, std::span<const std::uint8_t> bytes) {
    // A pipe that nobody reads fails at once instead of waiting.
    constexpr int flags = O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
    const Descriptor file(uninterrupted([&] { return ::open(path.c_str(), flags, 0600); }));
    if (!file) return fileError("writing", path, errno);
    const int number = writeAll(file.get(), bytes);
    return number == 0 ? nullptr : fileError("writing", path, number);
}
