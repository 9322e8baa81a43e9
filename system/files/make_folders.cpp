#include "system/files/make_folders.h"

#include "system/files/Descriptor.h"
#include "system/files/owner.h"
#include "system/files/uninterrupted.h"

#include <climits>
#include <fcntl.h>
#include <sys/stat.h>

namespace {

constexpr mode_t ownerOnly = 0700;

// Opens the folder, and makes it first if it is missing.
seat::Descriptor openOrMake(int parent, const std::string& name) {
    using namespace seat;
    constexpr int flags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
    const auto open = [&] { return uninterrupted([&] { return ::openat(parent, name.c_str(), flags); }); };
    Descriptor folder(open());
    // One that may be entered but not listed is no obstacle on the way.
    if (!folder && errno == EACCES)
        folder.reset(uninterrupted([&] { return ::openat(parent, name.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC); }));
    if (folder || errno != ENOENT) return folder;
    const bool isMade = ::mkdirat(parent, name.c_str(), ownerOnly) == 0;
    if (!isMade && errno != EEXIST) return folder;
    folder.reset(open());
    if (folder && isMade && settleMade(folder.get(), ownerOnly, parent) != 0) folder.reset();
    return folder;
}

} // namespace

int seat::makeFolders(const std::string& path) {
    // Made one by one they could be deeper than any path can say.
    if (path.size() >= PATH_MAX) return ENAMETOOLONG;
    const char* const start = path.starts_with('/') ? "/" : ".";
    Descriptor folder(uninterrupted([&] { return ::open(start, O_PATH | O_DIRECTORY | O_CLOEXEC); }));
    for (std::size_t at = 0; folder && at < path.size();) {
        const std::size_t slash = std::min(path.find('/', at), path.size());
        if (slash > at) folder = openOrMake(folder.get(), path.substr(at, slash - at));
        at = slash + 1;
    }
    return folder ? 0 : errno;
}
