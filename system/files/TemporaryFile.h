#pragma once

#include "system/files/Descriptor.h"

#include <string>

namespace seat {

// A new file beside another one, to be written and renamed over it: "<name>.saving-<six letters>", its owner's alone
// (0600). It is locked while it is open, so that one that is not is known for a dead writer's. Removed at the end of
// the scope unless it was renamed.
class TemporaryFile {
public:
    // The folder is open for as long as this lives.
    TemporaryFile(int folder, const std::string& name);
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    int descriptor() const { return m_descriptor.get(); }
    const std::string& name() const { return m_name; }
    // Why there is none; 0 if there is one.
    int error() const { return m_error; }
    // 0, or the error's number.
    int renameTo(const std::string& name);

private:
    int m_folder;
    Descriptor m_descriptor;
    std::string m_name;
    int m_error = 0;
};

// Removes what writers that were killed have left beside the file of that name; those of living writers, and files
// that only have a name like it, stay.
void removeDeadTemporaries(int folder, const std::string& name);

} // namespace seat
