#include "services/bluetooth/PowerOnOperation.h"

#include "services/bluetooth/service_names.h"
#include "services/common/log.h"

#include <utility>

namespace bluetooth {
namespace {

// For all of it; a service that hangs answers nothing.
constexpr std::chrono::seconds limit{8};
// A service that has just started shows its adapters a moment later.
constexpr std::chrono::milliseconds adapterTime{1500};

} // namespace

PowerOnOperation::PowerOnOperation(SystemClient& client, Client::Completion completion)
    : ServiceOperation(
          client,
          [completion = std::move(completion)](Error error) {
              // However it fails, what it means is that there is no adapter to be had.
              if (completion) completion(error == Error::None ? error : Error::NoAdapter);
          },
          limit) {
    // Nothing is told before the caller has its handle, so the first step is put off as well.
    wait(std::chrono::microseconds(0), [this] { goOn(); });
}

void PowerOnOperation::timedOut() { services::log("switching Bluetooth on: %s", errorText(Error::TimedOut)); }

void PowerOnOperation::goOn() {
    if (!isUnderWay()) return;
    switch (client().adapterState()) {
    case AdapterState::On:
        return finish(Error::None);
    case AdapterState::Blocked:
        services::log("switching Bluetooth on: it is blocked");
        return finish(Error::NoAdapter);
    case AdapterState::Off:
        if (m_step != Step::SwitchedOn) switchOn();
        return;
    case AdapterState::Unknown:
        return; // the answer is on its way
    case AdapterState::Absent:
        break;
    }
    if (m_step == Step::SwitchedOn) m_step = Step::ServiceStarted; // it has gone; there may be another
    if (!client().hasService() && m_step == Step::Begun) return startService();
    if (std::exchange(m_isWaiting, true)) return;
    wait(adapterTime, [this] {
        if (client().adapterState() != AdapterState::Absent) return;
        services::log("switching Bluetooth on: there is no adapter");
        finish(Error::NoAdapter);
    });
}

void PowerOnOperation::startService() {
    m_step = Step::ServiceStarted;
    auto message = bus().method(busName, busPath, busName, "StartServiceByName");
    if (message) ::sd_bus_message_append(message.get(), "su", serviceName, 0U);
    ask(std::move(message), [this](const Reply& reply) {
        if (reply.error.empty()) return goOn();
        services::log("starting the Bluetooth service: %s", serviceReason(reply).c_str());
        finish(Error::NoAdapter);
    });
}

void PowerOnOperation::switchOn() {
    m_step = Step::SwitchedOn;
    const std::string adapter = client().objects().adapterInUse();
    auto message = bus().method(serviceName, adapter.c_str(), propertiesInterface, "Set");
    if (message) ::sd_bus_message_append(message.get(), "ssv", adapterInterface, "Powered", "b", 1);
    ask(std::move(message), [this](const Reply& reply) {
        if (reply.error.empty()) return; // the adapter says itself when it is on
        services::log("switching Bluetooth on: %s", serviceReason(reply).c_str());
        finish(Error::NoAdapter);
    });
}

} // namespace bluetooth
