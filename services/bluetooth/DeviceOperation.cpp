#include "services/bluetooth/DeviceOperation.h"

#include "services/bluetooth/service_errors.h"
#include "services/bluetooth/service_names.h"
#include "services/common/log.h"

#include <utility>

namespace bluetooth {
namespace {

using Kind = DeviceOperation::Kind;

// The service itself gives a link 40 s.
std::chrono::seconds limitOf(Kind kind) {
    return std::chrono::seconds(kind == Kind::Connect || kind == Kind::Pair ? 45 : 10);
}

const char* nameOf(Kind kind) {
    switch (kind) {
    case Kind::Pair:
        return "pairing with";
    case Kind::Trust:
        return "trusting";
    case Kind::Connect:
        return "connecting";
    case Kind::Disconnect:
        return "disconnecting";
    case Kind::Remove:
        return "removing";
    }
    return "";
}

// To undo something that is not there is done.
bool isDoneWithoutDevice(Kind kind) { return kind == Kind::Disconnect || kind == Kind::Remove; }

} // namespace

DeviceOperation::DeviceOperation(SystemClient& client, Kind kind, const Address& address, Client::Completion completion)
    : ServiceOperation(client, std::move(completion), limitOf(kind)), m_kind(kind),
      m_path(client.objects().pathOf(address)), m_name(address.forLog()) {
    if (m_path.empty()) {
        const bool hasAdapter = !client.objects().adapterInUse().empty();
        finishSoon(!hasAdapter ? Error::NoAdapter : isDoneWithoutDevice(kind) ? Error::None : Error::UnknownDevice);
        return;
    }
    const DeviceObject& object = client.objects().devices().at(m_path);
    m_adapter = object.adapter;
    if (kind == Kind::Pair) {
        if (object.device.isPaired) {
            finishSoon(Error::None);
            return;
        }
        m_agent = std::make_unique<Agent>(client.bus(), m_path, m_name);
    }
    askNext();
}

DeviceOperation::~DeviceOperation() {
    if (isUnderWay()) callOff();
    if (m_agent) bus().send(agentMethod("UnregisterAgent"));
}

services::Message DeviceOperation::deviceMethod(const char* member) const {
    return bus().method(serviceName, m_path.c_str(), deviceInterface, member);
}

services::Message DeviceOperation::setFlag(const char* property) const {
    auto message = bus().method(serviceName, m_path.c_str(), propertiesInterface, "Set");
    if (message) ::sd_bus_message_append(message.get(), "ssv", deviceInterface, property, "b", 1);
    return message;
}

services::Message DeviceOperation::agentMethod(const char* member) const {
    auto message = bus().method(serviceName, managerPath, managerInterface, member);
    if (message) ::sd_bus_message_append(message.get(), "o", Agent::path);
    return message;
}

services::Message DeviceOperation::question(std::size_t number) const {
    switch (m_kind) {
    case Kind::Pair: {
        if (number > 0) return deviceMethod("Pair");
        // Only with an agent of our own does the service not ask the desktop's, which would show a question of its own.
        auto message = agentMethod("RegisterAgent");
        if (message) ::sd_bus_message_append(message.get(), "s", "NoInputNoOutput");
        return message;
    }
    case Kind::Trust:
        return setFlag(number == 0 ? "Trusted" : "WakeAllowed");
    case Kind::Connect:
        return deviceMethod("Connect");
    case Kind::Disconnect:
        return deviceMethod("Disconnect");
    case Kind::Remove: {
        auto message = bus().method(serviceName, m_adapter.c_str(), adapterInterface, "RemoveDevice");
        if (message) ::sd_bus_message_append(message.get(), "o", m_path.c_str());
        return message;
    }
    }
    return nullptr;
}

void DeviceOperation::askNext() {
    auto message = question(m_asked++);
    ask(std::move(message), [this](const Reply& reply) { answered(reply); });
}

void DeviceOperation::answered(const Reply& reply) {
    const std::size_t questions = m_kind == Kind::Pair || m_kind == Kind::Trust ? 2 : 1;
    Error error = reply.error.empty() ? Error::None : errorOfService(reply.error, reply.text);
    // Not every device can wake the computer, nor does every version of the service know of it.
    if (m_kind == Kind::Trust && m_asked == questions) error = Error::None;
    if (m_kind == Kind::Disconnect && reply.error.ends_with(".NotConnected")) error = Error::None;
    if (isDoneWithoutDevice(m_kind) && error == Error::UnknownDevice) error = Error::None;
    if (error == Error::None && m_asked < questions) return askNext();
    if (error != Error::None) logFailure(error, serviceReason(reply));
    finish(error);
}

void DeviceOperation::logFailure(Error error, const std::string& reason) const {
    if (m_agent && m_agent->hasRefused()) return; // which has said why
    services::log("%s %s: %s%s", nameOf(m_kind), m_name.c_str(), errorText(error),
                  reason.empty() ? "" : (" (" + reason + ")").c_str());
}

void DeviceOperation::fail(Error error) {
    logFailure(error);
    finish(error);
}

void DeviceOperation::timedOut() {
    logFailure(Error::TimedOut);
    callOff();
}

void DeviceOperation::objectsChanged() {
    if (!isUnderWay() || m_path.empty() || client().objects().devices().contains(m_path)) return;
    // An answer to the question may be on its way, but nothing more can come of it.
    if (client().objects().adapterInUse().empty()) return fail(Error::NoAdapter);
    if (std::exchange(m_isGone, true)) return;
    // An adapter that goes takes its devices away first: by the time that the service answers again it has gone.
    auto message = bus().method(serviceName, m_adapter.c_str(), propertiesInterface, "GetAll");
    if (message) ::sd_bus_message_append(message.get(), "s", adapterInterface);
    ask(std::move(message), [this](const Reply&) {
        if (isDoneWithoutDevice(m_kind)) return finish(Error::None);
        fail(Error::UnknownDevice);
    });
}

void DeviceOperation::callOff() {
    if (m_path.empty() || m_asked == 0) return;
    if (m_kind == Kind::Pair && m_asked > 1) bus().send(deviceMethod("CancelPairing"));
    if (m_kind == Kind::Connect) bus().send(deviceMethod("Disconnect"));
}

} // namespace bluetooth
