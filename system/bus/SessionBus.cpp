#include "system/bus/SessionBus.h"

#include "platform/log.h"
#include "system/bus/SessionBusImplementation.h"
#include "system/bus/bus_address.h"

#include <dbus/dbus.h>
#include <utility>

namespace {

// A bus that throws us out at once is not asked again at once.
constexpr std::chrono::milliseconds settledAge{1000};

} // namespace

namespace seat {

SessionBus::SessionBus() = default;

SessionBus& SessionBus::shared() {
    static auto* const bus = new SessionBus;
    if (!bus->m_implementation) bus->m_implementation = std::make_unique<Implementation>();
    return *bus;
}

bool SessionBus::isConnected() const { return m_implementation->isConnected(); }
bool SessionBus::isFlushed() const { return m_implementation->isFlushed(); }

void SessionBus::close() { m_implementation.reset(); }

void SessionBus::addName(const std::string& name, std::function<void(NameState)> changed) {
    m_implementation->addName(name, std::move(changed));
}
void SessionBus::removeName(const std::string& name) { m_implementation->removeName(name); }

SessionBus::Token SessionBus::addMethods(const std::string& path, const std::string& interface,
                                         std::function<CallResult(const BusCall&)> called) {
    return m_implementation->addMethods(path, interface, std::move(called));
}
SessionBus::Token SessionBus::addSignal(const std::string& interface, const std::string& member,
                                        std::function<void(const BusSignal&)> heard, const std::string& sender) {
    return m_implementation->addSignal(interface, member, std::move(heard), sender);
}
void SessionBus::remove(Token token) { m_implementation->remove(token); }

void SessionBus::emitSignal(const BusSignal& signal) { m_implementation->emitSignal(signal); }

void SessionBus::call(const BusMethod& method, const std::string& signature, const std::vector<id>& arguments,
                      std::chrono::milliseconds timeout, std::function<void(const Reply&)> replied) {
    m_implementation->call(method, signature, arguments, timeout, std::move(replied));
}

SessionBus::Implementation::Implementation() = default;

SessionBus::Implementation::~Implementation() {
    m_connection.close();
    for (const auto& waiting : m_waiting) ::dbus_message_unref(waiting.message);
}

void SessionBus::Implementation::connectIfNeeded() {
    // While somebody watches for the bus there is none to connect to.
    if (m_connection.isClosed() && !m_watcher.isWatching() && m_retry == 0) connectNow();
}

void SessionBus::Implementation::connectNow() {
    m_address = busAddressToTry();
    m_isSilent = false;
    if (m_address.empty())
        busIsGone("this session has none");
    else
        m_connection.open(m_address);
}

void SessionBus::Implementation::busIsReady() {
    if (m_absenceLogged) NSLog("session bus %s: connected", m_address.c_str());
    m_absenceLogged = false;
    m_isSilent = false;
    m_watcher.stop();
    for (const auto& [token, listener] : m_listeners) listen(listener, "AddMatch");
    for (const auto& [name, asked] : m_names) {
        callBus("AddMatch", ownerRule(name), std::nullopt, nullptr);
        requestName(name);
    }
    const auto waiting = std::exchange(m_waiting, {});
    for (const auto& each : waiting) sendNow(each);
}

void SessionBus::Implementation::busIsGone(const std::string& reason) {
    logAbsence(reason);
    m_isSilent = false;
    dropWaiting();
    m_senders.forget();
    const auto calls = std::exchange(m_calls, {});
    for (const auto& [token, replied] : calls) replied({DBUS_ERROR_DISCONNECTED, {}});
    std::vector<std::string> lost;
    for (const auto& [name, asked] : m_names) lost.push_back(name);
    for (const auto& name : lost) setNameState(name, NameState::Lost);

    if (!isWanted() || m_address.empty() || !m_connection.isClosed() || m_retry != 0) return;
    if (m_connection.age() < settledAge && !m_watcher.isWatching())
        m_retry = m_events.addTimer(settledAge, EventSet::Timer::Once, [this] {
            m_retry = 0;
            connectNow();
        });
    else
        m_watcher.watch(socketFileOfBusAddress(m_address));
}

void SessionBus::Implementation::busIsSilent() {
    logAbsence("it takes connections but does not answer");
    m_isSilent = true;
    dropWaiting();
    // A new bus may take the place of this one's socket.
    const auto socketFile = socketFileOfBusAddress(m_address);
    if (!socketFile.empty()) m_watcher.watch(socketFile);
}

void SessionBus::Implementation::logAbsence(const std::string& reason) {
    if (!std::exchange(m_absenceLogged, true))
        NSLog("session bus%s%s: %s", m_address.empty() ? "" : " ", m_address.c_str(), reason.c_str());
}

} // namespace seat
