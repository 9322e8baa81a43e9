#include "services/bluetooth/SearchOperation.h"

#include "services/bluetooth/service_errors.h"
#include "services/bluetooth/service_names.h"
#include "services/common/log.h"

#include <utility>

namespace bluetooth {
namespace {

constexpr std::chrono::seconds startLimit{10};

} // namespace

SearchOperation::SearchOperation(SystemClient& client, Client::Completion completion)
    : ServiceOperation(client, std::move(completion)) {
    if (client.adapterState() != AdapterState::On) {
        finishSoon(Error::NoAdapter);
        return;
    }
    begin();
}

SearchOperation::~SearchOperation() {
    if (isUnderWay()) callOff();
    if (m_counts) client().searchEnded();
}

void SearchOperation::begin() {
    m_adapter = client().objects().adapterInUse();
    ask(adapterMethod("StartDiscovery"), [this](const Reply& reply) { begun(reply); });
    wait(startLimit, [this] {
        services::log("searching: the Bluetooth service does not answer");
        callOff();
        ended(Error::TimedOut);
    });
}

void SearchOperation::begun(const Reply& reply) {
    // Somebody of this program has begun one already: that is as good.
    const Error error = reply.error.empty() ? Error::None : errorOfService(reply.error, reply.text);
    if (error != Error::None && error != Error::Busy) {
        services::log("searching: %s (%s)", errorText(error), serviceReason(reply).c_str());
        return ended(error);
    }
    stopWaiting();
    if (!std::exchange(m_counts, true)) client().searchBegan();
}

services::Message SearchOperation::adapterMethod(const char* member) const {
    return bus().method(serviceName, m_adapter.c_str(), adapterInterface, member);
}

void SearchOperation::objectsChanged() {
    if (!isUnderWay() || m_adapter.empty()) return;
    if (client().adapterState() != AdapterState::On) return ended(Error::NoAdapter);
    // A service that starts shows its adapters one after the other, and the first of them need not be the one that is
    // used once all are there. What is found elsewhere would be paired elsewhere.
    if (m_adapter == client().objects().adapterInUse()) return;
    callOff();
    begin();
}

void SearchOperation::ended(Error error) {
    if (std::exchange(m_counts, false)) client().searchEnded();
    finish(error);
}

void SearchOperation::callOff() {
    if (!m_adapter.empty()) bus().send(adapterMethod("StopDiscovery"));
}

} // namespace bluetooth
