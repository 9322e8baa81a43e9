#include "desktop/links/executable.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace seat {
namespace {

constexpr int mostInterpreters = 4; // of interpreters; the kernel follows no more
constexpr std::string_view blanks = " \t";

bool isFile(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

// Empty when it is nowhere.
std::string pathOf(const std::string& program) {
    if (program.find('/') != std::string::npos) return program;
    const char* const path = std::getenv("PATH");
    std::stringstream folders(path ? path : "/usr/local/bin:/usr/bin:/bin");
    for (std::string folder; std::getline(folders, folder, ':');)
        if (folder.append("/").append(program); isFile(folder) && ::access(folder.c_str(), X_OK) == 0) return folder;
    return {};
}

// Of a script; empty for other files, and for one that cannot be read.
std::string interpreterOf(const std::string& path) {
    std::array<char, 256> start{};
    std::ifstream file(path, std::ios::binary);
    file.read(start.data(), start.size());
    const std::string_view text(start.data(), static_cast<std::size_t>(file.gcount()));
    if (!text.starts_with("#!")) return {};
    const auto line =
        text.substr(2, text.find('\n') == std::string_view::npos ? std::string_view::npos : text.find('\n') - 2);
    const auto begin = line.find_first_not_of(blanks);
    if (begin == std::string_view::npos) return {};
    return std::string(line.substr(begin, line.find_first_of(blanks, begin) - begin));
}

} // namespace

std::string programOfCommand(const std::string& command) {
    const auto begin = command.find_first_not_of(blanks);
    if (begin == std::string::npos) return {};
    const bool isQuoted = command[begin] == '"';
    std::string program;
    for (std::size_t i = begin + (isQuoted ? 1 : 0); i < command.size(); ++i) {
        if (isQuoted ? command[i] == '"' : blanks.find(command[i]) != std::string_view::npos) break;
        if (command[i] == '\\' && i + 1 < command.size()) ++i;
        program += command[i];
    }
    return program;
}

std::string reasonNotToExecute(const std::string& program) {
    std::string path = pathOf(program);
    if (path.empty()) return program + " is not among the programs";
    for (int i = 0; i <= mostInterpreters; ++i) {
        if (::access(path.c_str(), X_OK) != 0) return path + ": " + std::strerror(errno);
        if (!isFile(path)) return path + " is no program";
        path = interpreterOf(path);
        if (path.empty()) return {};
    }
    return program + " has too many interpreters";
}

} // namespace seat
