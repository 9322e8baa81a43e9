#pragma once

#include "simulator/ControlSocket.h"
#include "simulator/DaemonConnection.h"
#include "system/notify/NotifyListener.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace simulator {

// The stand-in for the add-on's daemon: keeps one controller connected or not, answers on the control socket and says
// each frame and notification. Sends nothing unasked.
class Daemon {
public:
    // The logical paths of its socket and of the lines that are its manner from the start.
    static constexpr const char* socketPath = "/Library/Caches/jvncontrol.sock";
    static constexpr const char* scriptPath = "/var/tmp/jvnd.script";

    Daemon();
    ~Daemon();
    Daemon(const Daemon&) = delete;
    Daemon& operator=(const Daemon&) = delete;

    // Empty when it serves its root now, else why not.
    std::string start();
    // A line of daemon_manner.h; holds for who connects from now on.
    void change(const std::string& line);

    std::optional<std::uint32_t> connectedType() const { return m_connectedType; }

private:
    std::string applyScript();
    std::string openDoor();
    void acceptCaller();
    Bytes answer(std::span<const std::uint8_t> frame);

    ControlSocket m_socket;
    DaemonManner m_manner;
    std::optional<std::uint32_t> m_connectedType;
    seat::SourceToken m_callers = 0;
    int m_lastNumber = 0;
    std::map<int, std::unique_ptr<DaemonConnection>> m_connections;
    std::vector<std::unique_ptr<seat::NotifyListener>> m_listeners;
    std::shared_ptr<int> m_alive = std::make_shared<int>(); // held weakly by what waits on the main queue
};

} // namespace simulator
