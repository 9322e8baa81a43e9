#pragma once

#include <cstdint>
#include <string>

namespace seat {

// What a manifest says of its module.
struct ModuleSeal {
    std::uint64_t size = 0;
    std::string sha256; // 64 hexadecimal digits
};

// Empty when the file is what the seal says and is meant for this machine; otherwise why not, as the rest of a sentence
// that begins with the file's name ("is cut: ..."). Runs none of the module's code: a module with a cut or changed byte
// kills the process that loads it. Any thread.
std::string moduleProblem(const std::string& path, const ModuleSeal& seal);

// Loads the module with its symbols kept to itself, for the rest of the process's life. Empty, or the loader's reason.
std::string loadModule(const std::string& path);

} // namespace seat
