#include "tests/support/PowerCut.h"

#include "tests/support/SystemCalls.h"

#include <atomic>
#include <cstdio>
#include <dlfcn.h>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <mutex>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using testing_support::PowerCut;
using testing_support::SystemCall;
using testing_support::systemCallFails;

struct SafeFile {
    std::string bytes;
    int held = -1; // keeps the number from being given to another file
};

struct Disk {
    std::mutex mutex;
    std::string folder;
    std::map<::ino_t, SafeFile> files;
    std::map<std::string, ::ino_t> names;
    std::function<void()> look;
};

std::atomic<bool> isWatched = false;
Disk& disk() {
    static auto& only = *new Disk;
    return only;
}

std::string bytesOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::map<std::string, ::ino_t> namesNow() {
    std::map<std::string, ::ino_t> names;
    for (const auto& entry : std::filesystem::directory_iterator(disk().folder)) {
        struct stat status {};
        if (::lstat(entry.path().c_str(), &status) == 0) names[entry.path().filename().string()] = status.st_ino;
    }
    return names;
}

// With the mutex held. `path` leads to the very file, whatever its name is by now.
void keep(const std::string& path, ::ino_t number) {
    SafeFile& file = disk().files[number];
    file.bytes = bytesOf(path);
    if (file.held == -1) file.held = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
}

void step() {
    std::function<void()> look;
    {
        const std::lock_guard lock(disk().mutex);
        look = disk().look;
    }
    if (look) look();
}

void flushed(int descriptor) {
    if (!isWatched) return;
    {
        const std::lock_guard lock(disk().mutex);
        struct stat status {};
        struct stat folder {};
        if (::fstat(descriptor, &status) != 0 || ::stat(disk().folder.c_str(), &folder) != 0) return;
        if (S_ISREG(status.st_mode))
            keep("/proc/self/fd/" + std::to_string(descriptor), status.st_ino);
        else if (status.st_ino == folder.st_ino && status.st_dev == folder.st_dev)
            disk().names = namesNow();
    }
    step();
}

template <class Call> Call* next(const char* name) { return reinterpret_cast<Call*>(::dlsym(RTLD_NEXT, name)); }

} // namespace

void testing_support::useOwnFlushes() {}

PowerCut::PowerCut(std::string folder) {
    const std::lock_guard lock(disk().mutex);
    disk().folder = std::move(folder);
    disk().names = namesNow();
    for (const auto& [name, number] : disk().names) keep(disk().folder + "/" + name, number);
    isWatched = true;
}

PowerCut::~PowerCut() {
    isWatched = false;
    const std::lock_guard lock(disk().mutex);
    for (const auto& [number, file] : disk().files) ::close(file.held);
    disk().files.clear();
    disk().names.clear();
    disk().look = nullptr;
}

PowerCut::Files PowerCut::left(Names names) const {
    const std::lock_guard lock(disk().mutex);
    Files files;
    for (const auto& [name, number] : names == Names::Flushed ? disk().names : namesNow()) {
        const auto safe = disk().files.find(number);
        files[name] = safe == disk().files.end() ? std::string() : safe->second.bytes;
    }
    return files;
}

void PowerCut::atEveryStep(std::function<void()> look) {
    const std::lock_guard lock(disk().mutex);
    disk().look = std::move(look);
}

// A program's own definition of a library's function stands before the library's.
#define OWN_CALL extern "C" [[gnu::visibility("default")]]

OWN_CALL int fsync(int descriptor) {
    static auto* const call = next<int(int)>("fsync");
    if (systemCallFails(SystemCall::Flush, descriptor)) return -1;
    const int result = call(descriptor);
    if (result == 0) flushed(descriptor);
    return result;
}
OWN_CALL int fdatasync(int descriptor) {
    static auto* const call = next<int(int)>("fdatasync");
    if (systemCallFails(SystemCall::Flush, descriptor)) return -1;
    const int result = call(descriptor);
    if (result == 0) flushed(descriptor);
    return result;
}
OWN_CALL int rename(const char* from, const char* to) noexcept {
    static auto* const call = next<int(const char*, const char*)>("rename");
    if (systemCallFails(SystemCall::Rename, -1)) return -1;
    const int result = call(from, to);
    if (isWatched && result == 0) step();
    return result;
}
OWN_CALL int renameat(int fromFolder, const char* from, int toFolder, const char* to) noexcept {
    static auto* const call = next<int(int, const char*, int, const char*)>("renameat");
    if (systemCallFails(SystemCall::Rename, -1)) return -1;
    const int result = call(fromFolder, from, toFolder, to);
    if (isWatched && result == 0) step();
    return result;
}
