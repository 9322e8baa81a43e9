#include "simulator/Daemon.h"

#include "kit/dispatch/main_queue.h"
#include "simulator/output_lines.h"
#include "system/files/root.h"

#include <fstream>
#include <utility>

namespace simulator {

namespace {

constexpr const char* heard[] = {"com.quorrel.jvninitbt", "com.quorrel.jvnprefs.changed", "com.quorrel.jvnfailure"};

} // namespace

Daemon::Daemon() = default;
Daemon::~Daemon() { seat::removeSource(m_callers); }

std::string Daemon::start() {
    if (auto problem = m_socket.claim(seat::hostPath(socketPath)); !problem.empty()) return problem;
    if (auto problem = applyScript(); !problem.empty()) return problem;
    for (const char* const name : heard)
        m_listeners.push_back(std::make_unique<seat::NotifyListener>(name, [name] { say("heard %s", name); }));
    return openDoor();
}

std::string Daemon::applyScript() {
    std::ifstream script(seat::hostPath(scriptPath));
    for (std::string line; std::getline(script, line);)
        if (auto problem = changeManner(m_manner, line); !problem.empty()) return problem;
    return {};
}

void Daemon::change(const std::string& line) {
    const auto before = m_manner.door;
    auto problem = changeManner(m_manner, line);
    if (problem.empty() && m_manner.door != before) problem = openDoor();
    say("%s: %s", line.c_str(), problem.empty() ? "from now on" : problem.c_str());
}

std::string Daemon::openDoor() {
    seat::removeSource(std::exchange(m_callers, 0));
    auto problem = m_socket.open(m_manner.door);
    if (problem.empty() && m_manner.door == DaemonManner::Door::Open)
        m_callers = seat::addReadableSource(m_socket.descriptor(), [this] { acceptCaller(); });
    return problem;
}

void Daemon::acceptCaller() {
    auto caller = m_socket.accept();
    if (!caller) return;
    const int number = ++m_lastNumber;
    const auto ended = [this, number, alive = std::weak_ptr<int>(m_alive)] {
        seat::queueOnMain([this, number, alive] {
            if (!alive.expired()) m_connections.erase(number);
        });
    };
    m_connections[number] = std::make_unique<DaemonConnection>(
        number, std::move(caller), m_manner, [this](std::span<const std::uint8_t> frame) { return answer(frame); },
        ended);
}

Bytes Daemon::answer(std::span<const std::uint8_t> frame) {
    switch (static_cast<Command>(word(frame, 0))) {
    case Command::Connect: {
        const auto code = m_manner.code.value_or(connectAccepted);
        if (code == connectAccepted) m_connectedType = word(frame, 4);
        return makeReply(code, code == connectAccepted ? stateConnected : 0);
    }
    case Command::QueryConnection:
        return makeReply(word(frame, 0), m_connectedType ? stateConnected : stateUnknown);
    case Command::Disconnect:
    case Command::RestartDaemons:
        m_connectedType.reset();
        return {};
    case Command::SetLEDColor:
    case Command::EndSession:
        return {};
    }
    return {};
}

} // namespace simulator
