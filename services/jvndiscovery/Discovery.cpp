#include "services/jvndiscovery/Discovery.h"

#include "services/common/log.h"

#include <utility>

namespace jvndiscovery {
namespace {

using namespace std::chrono_literals;

// A service that is restarted, or an adapter that is plugged in again, gets this long to be back.
constexpr auto comebackTime = 5s;
constexpr auto comebackPause = 500ms;
// A controller with which pairing has failed is left alone for a while, so that others get their turn.
constexpr auto failurePause = 10s;
// Pairing is what counts: a controller that does not connect now calls by itself later.
constexpr auto connectTime = 15s;
// Whoever else writes the preferences holds them for milliseconds.
constexpr auto storeTime = 2000ms;
constexpr auto storePause = 20ms;
constexpr auto endTime = 300ms;

} // namespace

Discovery::Discovery(services::EventLoop& loop, bluetooth::Client& client, Surroundings surroundings)
    : m_loop(loop), m_client(client), m_surroundings(std::move(surroundings)) {
    client.setListener({.deviceChanged = [this](const Device& device) { consider(device); },
                        .searchBegan = [this] { searchBegan(); }});
    bringUp();
}

Discovery::~Discovery() {
    m_client.setListener({});
    m_client.whenQuiet({});
}

void Discovery::bringUp() {
    m_search.reset();
    m_timer.reset();
    m_bringUp = m_client.powerOn([this](Error error) { broughtUp(error); });
}

void Discovery::broughtUp(Error error) {
    if (error != Error::None) return m_wasUp ? comeBack() : endWithoutBluetooth();
    if (!std::exchange(m_wasUp, true)) m_surroundings.report(State::Starting);
    search();
}

// It is gone, or does not search though it is on.
void Discovery::comeBack() {
    if (!m_lost) m_lost = m_loop.now();
    if (m_loop.now() - *m_lost >= comebackTime) return endWithoutBluetooth();
    m_timer = m_loop.after(comebackPause, [this] { bringUp(); });
}

void Discovery::endWithoutBluetooth() {
    m_surroundings.report(State::NoBluetooth);
    end(Outcome::NoBluetooth);
}

void Discovery::search() {
    m_candidate.reset();
    m_operation.reset();
    m_pairing.reset();
    m_search = m_client.search([this](Error) { comeBack(); });
    if (!m_failed.empty()) m_timer = m_loop.after(failurePause, [this] { considerAll(); });
}

void Discovery::searchBegan() {
    m_lost.reset();
    m_surroundings.report(State::Searching);
}

void Discovery::leaveAlone(const Address& address) {
    m_failed.insert(address);
    m_timer = m_loop.after(failurePause, [this] { considerAll(); });
}

void Discovery::considerAll() {
    m_failed.clear();
    for (const auto& device : m_client.devices()) consider(device);
}

void Discovery::consider(const Device& device) {
    if (!m_search || m_candidate || !device.isGamepad || !device.isHeard || m_failed.contains(device.address)) return;
    if (!device.isPaired) return pair(device.address);
    if (device.isConnected) return;
    // It wants to be paired, so it has forgotten that it was. Once the service has forgotten it too, it is found anew.
    if (device.isInPairingMode && !m_removal) {
        services::log("removing %s: it is paired here, and wants to be paired anew", device.address.forLog().c_str());
        m_removal = m_client.remove(device.address, [this, address = device.address](Error error) {
            m_removal.reset();
            if (error != Error::None && m_search) leaveAlone(address);
        });
    }
}

void Discovery::pair(const Address& address) {
    m_candidate = address;
    m_timer.reset();
    m_search.reset(); // a radio that searches makes connections slowly
    m_pairing = m_client.pair(address, [this](Error error) {
        if (error != Error::None) return giveUp(error);
        trust();
    });
}

void Discovery::trust() {
    m_operation = m_client.trust(*m_candidate, [this](Error error) {
        if (error != Error::None) return giveUp(error);
        connect();
    });
}

void Discovery::connect() {
    m_operation = m_client.connect(*m_candidate, [this](Error error) { connected(error); });
    m_timer = m_loop.after(connectTime, [this] {
        services::log("connecting %s: %s", m_candidate->forLog().c_str(), errorText(Error::TimedOut));
        connected(Error::TimedOut);
    });
}

void Discovery::connected(Error error) {
    m_timer.reset();
    m_operation.reset();
    const bool isPairingLost = error == Error::BondLost || error == Error::UnknownDevice || error == Error::NoAdapter;
    if (isPairingLost) return giveUp(error);
    storeWithin(storeTime);
}

void Discovery::storeWithin(std::chrono::milliseconds time) {
    const auto stored = m_surroundings.store(*m_candidate);
    if (stored == Stored::Yes) {
        m_surroundings.report(State::Paired);
        return end(Outcome::Paired);
    }
    if (stored == Stored::NotYet && time > 0ms) {
        m_timer = m_loop.after(storePause, [this, time] { storeWithin(time - storePause); });
        return;
    }
    if (stored == Stored::NotYet)
        services::log("storing the address of %s: another program holds the preferences",
                      m_candidate->forLog().c_str());
    giveUp(Error::Failed);
}

// The candidate is none after all: nothing of it stays, and the search goes on.
void Discovery::giveUp(Error error) {
    if (error != Error::NoAdapter) m_failed.insert(*m_candidate); // else it was not the controller
    m_operation.reset();
    m_pairing.reset();
    m_removal = m_client.remove(*m_candidate, [this](Error) { m_removal.reset(); });
    m_timer = m_loop.soon([this] { bringUp(); });
}

void Discovery::interrupt() {
    if (m_outcome) return;
    m_search.reset();
    m_bringUp.reset();
    m_operation.reset();
    m_pairing.reset();
    if (m_candidate) m_removal = m_client.remove(*m_candidate, [](Error) {});
    end(Outcome::Interrupted);
}

void Discovery::end(Outcome outcome) {
    if (m_outcome) return;
    m_outcome = outcome;
    m_client.setListener({});
    m_search.reset();
    m_bringUp.reset();
    m_operation.reset();
    m_pairing.reset();
    m_timer = m_loop.after(endTime, [this] { over(); });
    m_client.whenQuiet([this] { over(); });
}

void Discovery::over() {
    if (!std::exchange(m_isOver, true)) m_surroundings.ended(*m_outcome);
}

} // namespace jvndiscovery
