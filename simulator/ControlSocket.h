#pragma once

#include "simulator/daemon_manner.h"
#include "system/files/Descriptor.h"

#include <string>
#include <sys/types.h>
#include <vector>

namespace simulator {

// The listening end of the control socket at a real path: one a root, its stale file replaced, the file gone with this
// object.
class ControlSocket {
public:
    ControlSocket() = default;
    ~ControlSocket();
    ControlSocket(const ControlSocket&) = delete;
    ControlSocket& operator=(const ControlSocket&) = delete;

    // Takes the place, and makes its folders when they are missing. Empty when it is ours, else why not.
    std::string claim(const std::string& realPath);
    // Listens, or does not, at the place that was claimed. Empty, or why it cannot.
    std::string open(DaemonManner::Door door);

    // Readable when somebody connects.
    int descriptor() const { return m_listener.get(); }
    // None when nobody is there (any more) who may be.
    seat::Descriptor accept() const;

private:
    void close();

    std::string m_path;
    seat::Descriptor m_lock;
    seat::Descriptor m_listener;
    ::ino_t m_file = 0;
    std::vector<seat::Descriptor> m_queue; // callers of our own that keep the queue full
};

} // namespace simulator
