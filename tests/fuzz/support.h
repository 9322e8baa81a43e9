#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <string>
#include <unistd.h>

namespace fuzz {

// Whatever is promised of every input.
inline void expect(bool holds, const char* promise) {
    if (holds) return;
    std::fprintf(stderr, "broken: %s\n", promise);
    std::abort();
}

// A folder of this process's own, in memory where the system has such a place, for what reads files. One target has
// one; it is left behind by a run that finds something.
inline const std::string& folder() {
    static const auto* const path = [] {
        const bool hasMemory = ::access("/dev/shm", W_OK) == 0;
        std::string pattern = hasMemory ? "/dev/shm/joyvane-fuzz-XXXXXX"
                                        : (std::filesystem::temp_directory_path() / "joyvane-fuzz-XXXXXX").string();
        expect(::mkdtemp(pattern.data()) != nullptr, "there is a place for a folder");
        auto* const made = new std::string(pattern);
        std::atexit([] { std::filesystem::remove_all(folder()); });
        return made;
    }();
    return *path;
}

inline void write(const std::string& path, const std::uint8_t* data, std::size_t size) {
    // A stream would take longer than what most readers do.
    const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    expect(::write(file, data, size) == static_cast<ssize_t>(size), "there is room for a file");
    ::close(file);
}

inline std::string text(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

} // namespace fuzz
