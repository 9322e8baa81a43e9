#include "system/modules/module_file.h"

#include "system/modules/SHA256.h"

#include <cerrno>
#include <cstring>
#include <dlfcn.h>
#include <elf.h>
#include <fcntl.h>
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

struct Descriptor {
    int number;
    ~Descriptor() {
        if (number != -1) close(number);
    }
};

std::string reason(int error) { return std::string("cannot be read: ") + strerrordesc_np(error); }

} // namespace

std::string seat::moduleProblem(const std::string& path, const ModuleSeal& seal) {
    // A pipe in the module's place must not make us wait.
    const Descriptor file{open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)};
    if (file.number == -1) return errno == ENOENT ? "is missing" : reason(errno);
    struct stat information {};
    if (fstat(file.number, &information) != 0) return reason(errno);
    if (!S_ISREG(information.st_mode)) return "is no regular file";
    const auto size = static_cast<std::uint64_t>(information.st_size);
    if (size != seal.size)
        return (size < seal.size ? "is cut: " : "has grown: ") + std::to_string(size) + " bytes instead of " +
               std::to_string(seal.size);

    SHA256 digest;
    std::vector<std::uint8_t> piece(256 * 1024);
    for (std::uint64_t done = 0; done < size;) {
        const ssize_t got = read(file.number, piece.data(), piece.size());
        if (got < 0 && errno == EINTR) continue;
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
    if (found != seal.sha256) return "was changed: its digest is not the one in the manifest";
    return {};
}

std::string seat::loadModule(const std::string& path) {
    if (dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) return {};
    const char* const problem = dlerror();
    return problem ? problem : "unknown reason";
}
