#include "system/files/files.h"
#include "system/files/uninterrupted.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>

std::shared_ptr<NSError> seat::fileError(const char* operation, const std::string& path, int number) {
    char text[128];
    // The call that is safe on several threads; the "C" locale's words do.
    const char* const words = ::strerror_r(number, text, sizeof text);
    return NSError::errorWithDescription(std::string(operation) + " " + path + ": " + words, number);
}

std::shared_ptr<NSData> seat::readFile(const std::string& path, std::size_t maximumLength,
                                       std::shared_ptr<NSError>* error) {
    // Opening a pipe would otherwise wait for somebody to write to it.
    constexpr int flags = O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
    const Descriptor file(uninterrupted([&] { return ::open(path.c_str(), flags); }));
    if (file) return readOpenedFile(file, path, maximumLength, error);
    if (error) *error = fileError("reading", path, errno);
    return nullptr;
}

std::shared_ptr<NSData> seat::readOpenedFile(const Descriptor& file, const std::string& path, std::size_t maximumLength,
                                             std::shared_ptr<NSError>* error) {
    const auto failed = [&](int number) {
        if (error) *error = fileError("reading", path, number);
        return nullptr;
    };
    struct stat status {};
    if (::fstat(file.get(), &status) != 0) return failed(errno);
    if (S_ISDIR(status.st_mode)) return failed(EISDIR);
    if (!S_ISREG(status.st_mode)) return failed(EINVAL);
    if (std::cmp_greater(status.st_size, maximumLength)) return failed(EFBIG);

    // One byte of room more than promised: the read that does not fill it has seen the end.
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(status.st_size) + 1);
    std::size_t length = 0;
    for (;;) {
        const auto count =
            uninterrupted([&] { return ::read(file.get(), bytes.data() + length, bytes.size() - length); });
        if (count < 0) return failed(errno);
        if (count == 0) break;
        length += static_cast<std::size_t>(count);
        if (length > maximumLength) return failed(EFBIG);
        // The file grows while it is read.
        if (length == bytes.size()) bytes.resize(2 * length);
    }
    bytes.resize(length);
    return NSData::dataWithVector(std::move(bytes));
}
