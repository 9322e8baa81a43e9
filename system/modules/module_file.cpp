#include "system/modules/module_file.h"

#include "system/files/trusted_file.h"
#include "system/files/uninterrupted.h"
#include "system/modules/SHA256.h"
#include "system/modules/module_abi.h"

#include <cerrno>
#include <cstring>
#include <dlfcn.h>
#include <elf.h>
#include <exception>
#include <link.h>
#include <span>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

#if defined(__x86_64__)
constexpr unsigned ourMachine = EM_X86_64;
#elif defined(__i386__)
constexpr unsigned ourMachine = EM_386;
#elif defined(__aarch64__)
constexpr unsigned ourMachine = EM_AARCH64;
#elif defined(__arm__)
constexpr unsigned ourMachine = EM_ARM;
#elif defined(__riscv)
constexpr unsigned ourMachine = EM_RISCV;
#elif defined(__powerpc64__)
constexpr unsigned ourMachine = EM_PPC64;
#elif defined(__s390x__)
constexpr unsigned ourMachine = EM_S390;
#elif defined(__loongarch__)
constexpr unsigned ourMachine = 258;
#else
#error "Say which machine modules must be made for."
#endif

constexpr unsigned char ourClass = sizeof(void*) == 8 ? ELFCLASS64 : ELFCLASS32;
constexpr unsigned char ourByteOrder = __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__ ? ELFDATA2LSB : ELFDATA2MSB;

std::string headerProblem(std::span<const std::uint8_t> start) {
    ElfW(Ehdr) header;
    if (start.size() < sizeof header || std::memcmp(start.data(), ELFMAG, SELFMAG) != 0) return "is no module";
    std::memcpy(&header, start.data(), sizeof header);
    if (header.e_ident[EI_CLASS] != ourClass || header.e_ident[EI_DATA] != ourByteOrder ||
        header.e_machine != ourMachine)
        return "is made for another machine";
    if (header.e_type != ET_DYN) return "is no module that can be loaded";
    return {};
}

std::string reason(int error) { return std::string("cannot be read: ") + strerrordesc_np(error); }

// Empty, or why the bytes are not what the seal says. Reads the file to its end.
std::string sealProblem(int file, const seat::ModuleSeal& seal) {
    struct stat information {};
    if (::fstat(file, &information) != 0) return reason(errno);
    const auto size = static_cast<std::uint64_t>(information.st_size);
    if (size != seal.size)
        return (size < seal.size ? "is cut: " : "has grown: ") + std::to_string(size) + " bytes instead of " +
               std::to_string(seal.size);
    seat::SHA256 digest;
    std::vector<std::uint8_t> piece(256 * 1024);
    for (std::uint64_t done = 0; done < size;) {
        const auto got = seat::uninterrupted([&] { return ::read(file, piece.data(), piece.size()); });
        if (got < 0) return reason(errno);
        if (got == 0) return "was cut while it was read";
        const auto bytes = std::span<const std::uint8_t>(piece).first(static_cast<std::size_t>(got));
        if (done == 0)
            if (auto problem = headerProblem(bytes); !problem.empty()) return problem;
        digest.add(bytes);
        done += bytes.size();
    }
    const std::string found = digest.hexDigest();
    if (found.empty()) return "cannot be checked: the cryptographic library does not work";
    return found == seal.sha256 ? "" : "was changed: its digest is not the one in the manifest";
}

std::string abiProblem(int file) {
    const auto word = seat::moduleABI(file);
    if (!word) return "is no module of ours: it does not say what it was made for";
    return *word == JOYVANE_MODULE_ABI ? "" : "is made for another version of this program";
}

bool leadsTo(const std::string& path, int file) {
    struct stat there {};
    struct stat here {};
    return ::stat(path.c_str(), &there) == 0 && ::fstat(file, &here) == 0 && there.st_dev == here.st_dev &&
           there.st_ino == here.st_ino;
}

// A path that means the open file, whatever has its name by now. The first is good for other processes too, such as
// those that tell where in the module something went wrong.
std::string pathOf(int file) {
    for (const auto& process : {std::to_string(::getpid()), std::string("self")})
        if (auto path = "/proc/" + process + "/fd/" + std::to_string(file); leadsTo(path, file)) return path;
    return {};
}

void replaceAll(std::string& text, const std::string& what, const std::string& with) {
    for (auto at = text.find(what); at != std::string::npos; at = text.find(what, at + with.size()))
        text.replace(at, what.size(), with);
}

std::string loadFrom(const std::string& path) {
    // The C library says that this throws nothing, and the compiler believes it; but the module's initialisers may.
    void* (*const volatile open)(const char*, int) = &::dlopen;
    try {
        if (open(path.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE)) return {};
    } catch (const std::exception& thrown) {
        return std::string("one of its initialisers failed: ") + thrown.what();
    } catch (...) {
        return "one of its initialisers failed";
    }
    const char* const problem = ::dlerror();
    return problem ? problem : "unknown reason";
}

} // namespace

seat::CheckedModule seat::checkModule(const std::string& path, const ModuleSeal& seal) {
    CheckedModule module{.path = path, .problem = {}, .file = Descriptor()};
    module.file = openTrustedFile(path, module.problem);
    if (module.problem.empty()) module.problem = sealProblem(module.file.get(), seal);
    if (module.problem.empty()) module.problem = abiProblem(module.file.get());
    if (!module.problem.empty()) module.file.reset();
    return module;
}

std::string seat::loadModule(CheckedModule module) {
    // Never closed: the loader knows the module by this name, and would take another one of that name for it.
    const std::string path = pathOf(module.file.release());
    if (path.empty()) return "/proc is not there";
    std::string problem = loadFrom(path);
    replaceAll(problem, path, module.path);
    return problem;
}
