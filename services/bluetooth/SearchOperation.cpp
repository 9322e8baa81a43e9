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
    m_adapter = client.objects().adapterInUse();
    ask(adapterMethod("StartDiscovery"), [this](const Reply& reply) {
        // Somebody of this program has begun one already: that is as good.
        const Error error = reply.error.empty() ? Error::None : errorOfService(reply.error, reply.text);
        if (error != Error::None && error != Error::Busy) {
            services::log("searching: %s (%s)", errorText(error), serviceReason(reply).c_str());
            return ended(error);
        }
        stopWaiting();
        m_counts = true;
        this->client().searchBegan();
    });
    wait(startLimit, [this] {
        services::log("searching: the Bluetooth service does not answer");
        callOff();
        ended(Error::TimedOut);
    });
}

SearchOperation::~SearchOperation() {
    if (isUnderWay()) callOff();
    if (m_counts) client().searchEnded();
}

services::Message SearchOperation::adapterMethod(const char* member) const {
    return bus().method(serviceName, m_adapter.c_str(), adapterInterface, member);
}

void SearchOperation::objectsChanged() {
    if (isUnderWay() && !m_adapter.empty() && client().objects().stateOf(m_adapter) != AdapterState::On)
        ended(Error::NoAdapter);
}

void SearchOperation::ended(Error error) {
    if (std::exchange(m_counts, false)) client().searchEnded();
    finish(error);
}

void SearchOperation::callOff() {
    if (!m_adapter.empty()) bus().send(adapterMethod("StopDiscovery"));
}

} // namespace bluetooth
