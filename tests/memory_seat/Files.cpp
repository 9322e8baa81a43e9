#include "tests/memory_seat/Files.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <mutex>
#include <set>

namespace memory_seat {

namespace {

// Never destroyed: threads may read while the process ends.
struct Tree {
    std::mutex mutex;
    std::map<std::string, std::shared_ptr<const Bytes>> files;
};
Tree& tree() {
    static auto* const tree = new Tree;
    return *tree;
}

} // namespace

bool Files::write(const std::string& path, Bytes bytes) {
    const std::lock_guard lock(tree().mutex);
    for (auto slash = path.find('/', 1); slash != std::string::npos; slash = path.find('/', slash + 1))
        if (tree().files.contains(path.substr(0, slash))) return false;
    const auto below = tree().files.lower_bound(path + "/");
    if (below != tree().files.end() && below->first.starts_with(path + "/")) return false;
    tree().files[path] = std::make_shared<const Bytes>(std::move(bytes));
    return true;
}

std::shared_ptr<const Bytes> Files::read(const std::string& path) {
    const std::lock_guard lock(tree().mutex);
    const auto found = tree().files.find(path);
    return found == tree().files.end() ? nullptr : found->second;
}

void Files::remove(const std::string& path) {
    const std::lock_guard lock(tree().mutex);
    tree().files.erase(path);
}

std::optional<std::vector<std::string>> Files::list(const std::string& folder) {
    const std::string prefix = folder.ends_with('/') ? folder : folder + "/";
    std::set<std::string> names;
    const std::lock_guard lock(tree().mutex);
    for (auto at = tree().files.lower_bound(prefix); at != tree().files.end() && at->first.starts_with(prefix); ++at)
        names.insert(at->first.substr(prefix.size(), at->first.find('/', prefix.size()) - prefix.size()));
    if (names.empty()) return std::nullopt;
    return std::vector<std::string>(names.begin(), names.end());
}

void Files::clear() {
    const std::lock_guard lock(tree().mutex);
    tree().files.clear();
}

void Files::load(const std::string& realFolder, const std::string& folder) {
    for (const auto& entry : std::filesystem::directory_iterator(realFolder)) {
        if (!entry.is_regular_file()) continue;
        std::ifstream file(entry.path(), std::ios::binary);
        write(folder + "/" + entry.path().filename().string(), Bytes(std::istreambuf_iterator<char>(file), {}));
    }
}

} // namespace memory_seat
