#include "services/jvnd/Connector.h"

#include <algorithm>

namespace jvnd {

namespace {

ConnectFailure failureOf(bluetooth::Error error) {
    switch (error) {
    case bluetooth::Error::NoAdapter:
        return ConnectFailure::NoAdapter;
    case bluetooth::Error::UnknownDevice:
        return ConnectFailure::UnknownDevice;
    case bluetooth::Error::Refused:
    case bluetooth::Error::BondLost:
        return ConnectFailure::Refused;
    case bluetooth::Error::TimedOut:
        return ConnectFailure::TimedOut;
    case bluetooth::Error::Busy:
        return ConnectFailure::Busy;
    case bluetooth::Error::Unreachable:
    case bluetooth::Error::Failed:
    case bluetooth::Error::None:
        break;
    }
    return ConnectFailure::Unreachable;
}

} // namespace

Connector::Connector(services::EventLoop& loop, bluetooth::Client& client, Devices& devices)
    : m_loop(loop), m_client(client), m_devices(devices) {
    const auto changed = [this] {
        goOn();
        if (m_changed) m_changed();
    };
    const auto adapterChanged = [this](bluetooth::AdapterState) {
        if (m_changed) m_changed();
    };
    m_client.setListener({.adapterChanged = adapterChanged,
                          .deviceChanged = [changed](const bluetooth::Device&) { changed(); },
                          .deviceRemoved = [changed](const bluetooth::Address&) { changed(); }});
    m_devices.onChanged(changed);
}

Connector::~Connector() {
    m_client.setListener({});
    m_devices.onChanged({});
}

bool Connector::connect(const Target& target) {
    if (m_attempt) return m_attempt->target == target;
    m_attempt.emplace(target);
    m_attempt->timer = m_loop.after(timeout, [this] { timedOut(); });
    m_attempt->operation = m_client.powerOn([this](bluetooth::Error error) { poweredOn(error); });
    return true;
}

void Connector::poweredOn(bluetooth::Error error) {
    if (error != bluetooth::Error::None) return end(failureOf(error));
    m_attempt->step = m_attempt->target ? Step::Link : Step::InputDevice;
    if (m_attempt->target)
        m_attempt->operation =
            m_client.connect(*m_attempt->target, [this](bluetooth::Error result) { linked(result); });
    goOn();
}

void Connector::linked(bluetooth::Error error) {
    if (error != bluetooth::Error::None) return end(failureOf(error));
    m_attempt->step = Step::InputDevice;
    goOn();
}

// The input device comes a little later than the link; of a controller that calls it is the first that is waited for.
void Connector::goOn() {
    if (!m_attempt || m_attempt->step != Step::InputDevice) return;
    const bool isLinked = isConnected(m_attempt->target);
    if (m_attempt->target && m_attempt->wasLinked && !isLinked) return end(ConnectFailure::Unreachable);
    m_attempt->wasLinked = isLinked;
    if (isLinked && hasInputDevice(m_attempt->target)) end(std::nullopt);
}

bool Connector::hasInputDevice(const Target& target) const {
    const auto controllers = m_devices.controllers();
    if (!controllers) return true; // nobody can say, so the link must do
    return target ? std::ranges::find(*controllers, *target) != controllers->end() : !controllers->empty();
}

bool Connector::isConnected(const Target& target) const {
    if (target) {
        const auto device = m_client.device(*target);
        return device && device->isConnected;
    }
    const auto controllers = m_devices.controllers();
    return (controllers && !controllers->empty()) || !linkedGamepads().empty();
}

std::vector<bluetooth::Address> Connector::linkedGamepads() const {
    std::vector<bluetooth::Address> addresses;
    for (const auto& device : m_client.devices())
        if (device.isGamepad && device.isConnected) addresses.push_back(device.address);
    return addresses;
}

void Connector::timedOut() {
    const bool isLinked = m_attempt->target && m_attempt->step == Step::InputDevice;
    if (isLinked) dropLink();
    end(isLinked ? ConnectFailure::NoInputDevice : ConnectFailure::TimedOut);
}

// What nobody can play with is not left connected.
void Connector::dropLink() {
    run([this, address = *m_attempt->target](auto completion) { return m_client.disconnect(address, completion); });
}

void Connector::cancel() {
    if (!m_attempt) return;
    if (m_attempt->target && m_attempt->step == Step::InputDevice) dropLink();
    m_attempt.reset();
}

void Connector::end(Result result) {
    m_attempt.reset();
    if (m_ended) m_ended(result);
}

void Connector::disconnect(const Target& target) {
    if (m_attempt && m_attempt->target == target) end(ConnectFailure::Refused);
    auto addresses = target ? std::vector{*target} : linkedGamepads();
    for (const auto& address : addresses)
        run([this, &address](auto completion) { return m_client.disconnect(address, completion); });
}

void Connector::run(const std::function<bluetooth::Client::Handle(bluetooth::Client::Completion)>& begin) {
    const auto place = m_running.emplace(m_running.end());
    *place = begin([this, place](bluetooth::Error) { m_running.erase(place); });
}

void Connector::bringUp() {
    if (std::exchange(m_isBringingUp, true)) return;
    run([this](auto completion) {
        return m_client.powerOn([this, completion](bluetooth::Error error) {
            m_isBringingUp = false;
            completion(error);
        });
    });
}

} // namespace jvnd
