#include "platform/foundation/NSData.h"
#include "platform/log.h"
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
