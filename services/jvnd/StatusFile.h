#pragma once

#include "services/daemon_status/Status.h"
#include "system/files/Descriptor.h"

#include <optional>
#include <string>

namespace jvnd {

// The file that tells the page what the daemon knows. It goes with this object.
class StatusFile {
public:
    // A real path; its folder is there by the time that something is shown.
    explicit StatusFile(std::string path) : m_path(std::move(path)) {}
    ~StatusFile();
    StatusFile(const StatusFile&) = delete;
    StatusFile& operator=(const StatusFile&) = delete;

    // Replaces the file where that is news. One that cannot be written is logged once, and changes nothing else.
    void show(const daemon_status::Status& status);

private:
    int write(const std::string& text);

    std::string m_path;
    std::optional<daemon_status::Status> m_shown;
    seat::Descriptor m_file; // of what is shown; locked
    bool m_hasFailed = false;
};

} // namespace jvnd
