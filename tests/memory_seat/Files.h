#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace memory_seat {

using Bytes = std::vector<std::uint8_t>;

// The file system: absolute paths and what stands there. Folders are there as soon as something stands in them. Any
// thread.
class Files {
public:
    // False when a file stands where a folder is needed, or a folder at the path.
    static bool write(const std::string& path, Bytes bytes);
    // nullptr when there is no such file.
    static std::shared_ptr<const Bytes> read(const std::string& path);
    static void remove(const std::string& path);
    // The names in a folder; nothing when nothing stands in it.
    static std::optional<std::vector<std::string>> list(const std::string& folder);
    // Everything goes.
    static void clear();
    // Copies the files of a folder of the build machine, for what a program ships with.
    static void load(const std::string& realFolder, const std::string& folder);
};

} // namespace memory_seat
