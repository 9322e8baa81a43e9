#include "system/modules/module_abi.h"

#include "system/files/uninterrupted.h"

#include <cstring>
#include <elf.h>
#include <link.h>
#include <span>
#include <string_view>
#include <unistd.h>
#include <vector>

namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::size_t mostSegments = 64;          // of a library; it has about ten
constexpr std::size_t longestNotes = 64 * 1024;   // bytes; ours are forty
constexpr std::string_view owner("Joyvane\0", 8); // with its end, as notes have it
constexpr unsigned abiNote = 1;

// Empty when the file does not have them all.
std::vector<std::uint8_t> readAt(int file, std::uint64_t offset, std::size_t length) {
    std::vector<std::uint8_t> bytes(length);
    const auto got =
        seat::uninterrupted([&] { return ::pread(file, bytes.data(), length, static_cast<off_t>(offset)); });
    return got == static_cast<ssize_t>(length) ? bytes : std::vector<std::uint8_t>();
}

// Fills a record from the start of the bytes; false when they are too few.
template <class Record> bool fill(Record& record, Bytes bytes) {
    if (bytes.size() < sizeof record) return false;
    std::memcpy(&record, bytes.data(), sizeof record);
    return true;
}

std::optional<std::uint32_t> wordIn(Bytes notes, std::size_t alignment) {
    const auto aligned = [alignment](std::size_t length) { return (length + alignment - 1) / alignment * alignment; };
    for (ElfW(Nhdr) header; fill(header, notes);) {
        const std::size_t name = sizeof header;
        const std::size_t description = aligned(name + header.n_namesz);
        const std::size_t end = description + header.n_descsz;
        if (end > notes.size()) return std::nullopt;
        std::uint32_t word = 0;
        if (header.n_type == abiNote && header.n_namesz == owner.size() &&
            std::memcmp(notes.data() + name, owner.data(), owner.size()) == 0 && header.n_descsz == sizeof word &&
            fill(word, notes.subspan(description)))
            return word;
        notes = notes.subspan(std::min(aligned(end), notes.size()));
    }
    return std::nullopt;
}

} // namespace

std::optional<std::uint32_t> seat::moduleABI(int file) {
    ElfW(Ehdr) header;
    if (!fill(header, readAt(file, 0, sizeof header))) return std::nullopt;
    if (header.e_phentsize != sizeof(ElfW(Phdr)) || header.e_phnum > mostSegments) return std::nullopt;
    const auto segments = readAt(file, header.e_phoff, header.e_phnum * sizeof(ElfW(Phdr)));
    for (Bytes left = segments; !left.empty(); left = left.subspan(sizeof(ElfW(Phdr)))) {
        ElfW(Phdr) segment;
        fill(segment, left);
        if (segment.p_type != PT_NOTE || segment.p_filesz > longestNotes) continue;
        const auto notes = readAt(file, segment.p_offset, segment.p_filesz);
        if (const auto word = wordIn(notes, segment.p_align == 8 ? 8 : 4)) return word;
    }
    return std::nullopt;
}
