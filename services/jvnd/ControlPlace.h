#pragma once

#include "system/files/Descriptor.h"

#include <string>
#include <vector>

namespace jvnd {

// The sockets at which the daemon is reached: the one that the service manager has opened for it, and one of its own
// where the page's root is another than that one's. The own one has a lock beside it, so that a root has one daemon.
class ControlPlace {
public:
    ControlPlace() = default;
    // Takes away the own socket, unless keep() was called.
    ~ControlPlace();
    ControlPlace(const ControlPlace&) = delete;
    ControlPlace& operator=(const ControlPlace&) = delete;

    // Takes the sockets over that were passed to this process, and makes the one at the real path when none of them is
    // there. Folders that are missing are made. Empty, or why it cannot.
    std::string open(const std::string& realPath);

    const std::vector<seat::Descriptor>& listeners() const { return m_listeners; }
    // True when the service manager has started this process, and will again when a socket is connected to.
    bool isManaged() const { return m_isManaged; }
    // Somebody has connected already.
    bool hasCaller() const;

    // Starts the program anew, with the same arguments and the same sockets: gives the exit code with which the service
    // manager does so, or replaces this process. Comes back with 1 when it cannot.
    int restart(char* const* arguments);

private:
    std::string claim(const std::string& realPath);
    std::string bind(const std::string& realPath);
    void takePassed();
    bool isServed(const std::string& realPath) const;

    std::vector<seat::Descriptor> m_listeners;
    std::vector<std::string> m_names; // of the listeners
    seat::Descriptor m_lock;
    std::string m_ownPath; // of the socket that was made here
    bool m_isManaged = false;
};

} // namespace jvnd
