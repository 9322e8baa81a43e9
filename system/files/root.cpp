#include "system/files/root.h"

#include <filesystem>
#include <mutex>

namespace {

// Never destroyed: a worker may still write a file while the process ends.
struct Root {
    std::mutex mutex;
    std::string path;

    static Root& shared() {
        static auto* const root = new Root;
        return *root;
    }
};

} // namespace

void seat::setRoot(std::string realPath) {
    while (realPath.ends_with('/')) realPath.pop_back();
    const std::lock_guard lock(Root::shared().mutex);
    Root::shared().path = std::move(realPath);
}

std::string seat::root() {
    const std::lock_guard lock(Root::shared().mutex);
    return Root::shared().path;
}

std::string seat::hostPath(const std::string& logicalPath) {
    const std::string folder = root();
    if (folder.empty() || !logicalPath.starts_with('/')) return logicalPath;
    if (logicalPath.find("/..") == std::string::npos) return folder + logicalPath;
    return folder + std::filesystem::path(logicalPath).lexically_normal().string();
}
