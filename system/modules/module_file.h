#pragma once

#include "system/files/Descriptor.h"

#include <cstdint>
#include <string>

namespace seat {

// What a manifest says of its module.
struct ModuleSeal {
    std::uint64_t size = 0;
    std::string sha256; // 64 hexadecimal digits
};

// A module that has been looked at. The file stays open: whatever takes its name meanwhile, what is loaded is what was
// checked.
struct CheckedModule {
    std::string path;    // for people
    std::string problem; // empty, or the rest of a sentence that begins with the file's name ("is cut: ...")
    Descriptor file;     // none with a problem
};

// Opens a module, which nobody but this user and the administrator may be able to change (openTrustedFile), and holds
// it against its seal, this machine and the declarations that this program was compiled with. Runs none of its code:
// one with a cut or changed byte, or with other declarations, kills the process that loads it. Any thread.
CheckedModule checkModule(const std::string& path, const ModuleSeal& seal);

// Loads a checked module, with its symbols kept to itself, for the rest of the process's life. Empty, or the reason:
// the loader's, or what one of the module's initialisers threw. After the latter the loader is in no state to load
// anything more, and the process should end. Main thread.
std::string loadModule(CheckedModule module);

} // namespace seat
