#pragma once

#include "system/bus/RelayTimeouts.h"
#include "system/files/Descriptor.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace seat {

class RelayedConnection;

// Stands between the toolkit and the session's bus. The toolkit's accessibility asks the bus with calls that hold up
// the window, when it starts and when assistive technology comes; here each of them has an answer in time, whatever the
// bus does. The same for the accessibility bus, of which the toolkit hears from the session's. A thread of its own,
// which sleeps while nothing is said. Nobody but this process is served.
class BusRelay {
public:
    // To the bus at `busAddress`, in the bus's own notation.
    explicit BusRelay(std::string busAddress, RelayTimeouts timeouts = {});
    // Starts the thread, which connects to the bus. Until then who connects to us waits.
    void start();
    ~BusRelay();
    BusRelay(const BusRelay&) = delete;
    BusRelay& operator=(const BusRelay&) = delete;

    // What the toolkit is told of the session's bus; empty when the system gives us no socket.
    const std::string& address() const { return m_session.address; }
    // What it is told of the accessibility bus, which is at `busAddress`. Any thread.
    std::string doorToAccessibility(const std::string& busAddress);
    // The toolkit knows by other means that there is accessibility, and takes it to be on; it must not hear anything
    // else from a bus that is late, or it asks nobody for the address any more. Any thread.
    void setAccessible() { m_isAccessible = true; }

private:
    // Where the toolkit comes in, and the bus behind it.
    struct Door {
        Descriptor listener;
        std::string address;
        std::string bus;
        const char* name;
    };

    static Door openDoor(const char* name, std::string bus);
    void run();
    std::unique_ptr<RelayedConnection> connect(Door& door, std::string& problem);
    void letIn(Door& door);

    RelayTimeouts m_timeouts;
    Door m_session;
    Door m_accessibility;
    std::mutex m_mutex; // its bus
    std::atomic<bool> m_isAccessible = false;
    std::vector<std::unique_ptr<RelayedConnection>> m_connections;
    RelayedConnection* m_prepared = nullptr; // the one of them to the session's bus that the toolkit is to have
    Descriptor m_stop;
    std::thread m_thread;
};

} // namespace seat
