#include "platform/foundation/NSData.h"
#include "platform/log.h"
#include "system/files/atomic_file.h"
#include "system/files/files.h"
#include "system/files/root.h"

#include <cerrno>

std::shared_ptr<NSData> NSData::dataWithContentsOfFile(const std::string& path, std::size_t maximumLength) {
    std::shared_ptr<NSError> error;
    auto data = seat::readFile(seat::hostPath(path), maximumLength, &error);
    // That a file is not there yet is no failure worth a line.
    if (!data && error->code() != ENOENT) NSLog("%s", error->localizedDescription().c_str());
    return data;
}

bool NSData::writeToFile_options_error(const std::string& path, unsigned long options,
                                       std::shared_ptr<NSError>* error) const {
    const std::string file = seat::hostPath(path);
    const auto failure =
        options & NSDataWritingAtomic ? seat::writeFileAtomically(file, m_bytes) : seat::writeFile(file, m_bytes);
    if (!failure) return true;
    NSLog("%s", failure->localizedDescription().c_str());
    if (error) *error = failure;
    return false;
}
