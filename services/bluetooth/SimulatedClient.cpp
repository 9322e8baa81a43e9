#include "services/bluetooth/SimulatedClient.h"

#include "services/bluetooth/clients.h"
#include "services/common/log.h"

#include <algorithm>
#include <utility>

namespace bluetooth {
namespace {

using namespace std::chrono_literals;

constexpr auto moment = 200ms;       // in which a controller answers
constexpr auto searchTime = 600ms;   // until it is found
constexpr auto pageTimeout = 5120ms; // until one that is off is given up

// With its line in the log.
Error failure(const char* what, const SimulatedController& controller, Error error) {
    services::log("%s %s: %s", what, controller.address.forLog().c_str(), errorText(error));
    return error;
}

} // namespace

std::unique_ptr<Client> makeSimulatedClient(services::EventLoop& loop, const std::string& world,
                                            std::optional<int> wantedType) {
    return std::make_unique<SimulatedClient>(loop, world, wantedType);
}

// While it lives, controllers in pairing mode are there after a moment.
class SimulatedClient::Search final : public Operation {
public:
    Search(SimulatedClient& client, Completion completion) : m_client(client), m_completion(std::move(completion)) {
        client.m_searches.push_back(this);
        m_beginning = client.m_loop.soon([&client] {
            if (client.m_listener.searchBegan) client.m_listener.searchBegan();
        });
        m_moment = client.m_loop.after(searchTime, [this] {
            m_finds = true;
            m_client.tell();
        });
    }
    ~Search() override {
        std::erase(m_client.m_searches, this);
        m_client.m_tellSoon = m_client.m_loop.soon([&client = m_client] { client.tell(); });
    }
    Search(const Search&) = delete;
    Search& operator=(const Search&) = delete;

    bool finds() const { return m_finds; }
    void adapterChanged() {
        if (!m_completion || m_client.adapterState() == AdapterState::On) return;
        m_finds = false;
        m_beginning.reset();
        m_moment = m_client.m_loop.soon([this] {
            if (m_completion) std::exchange(m_completion, nullptr)(Error::NoAdapter);
        });
    }

private:
    SimulatedClient& m_client;
    Completion m_completion;
    services::EventLoop::Source m_beginning;
    services::EventLoop::Source m_moment;
    bool m_finds = false;
};

// Something that happens after a moment, unless it is given up before.
class SimulatedClient::Change final : public Operation {
public:
    Change(services::EventLoop& loop, std::chrono::milliseconds time, std::function<Error()> happen,
           Completion completion)
        : m_moment(loop.after(time, [happen = std::move(happen), completion = std::move(completion)] {
              const Error error = happen();
              if (completion) completion(error);
          })) {}

private:
    services::EventLoop::Source m_moment;
};

SimulatedClient::SimulatedClient(services::EventLoop& loop, const std::string& world, std::optional<int> wantedType)
    : m_loop(loop), m_wantedType(wantedType), m_tellSoon(loop.soon([this] { tell(); })),
      m_world(loop, world, [this] { tell(); }) {}

bool SimulatedClient::isInTheAir(const SimulatedController& controller) const {
    if (controller.isOff || !controller.isInPairingMode) return false;
    // Whoever holds it does what the page says, and the page says it for one type.
    return !m_wantedType || !controller.type || *controller.type == *m_wantedType;
}

bool SimulatedClient::isKnown(const SimulatedController& controller) const {
    if (controller.isPaired) return true;
    const bool finds =
        std::any_of(m_searches.begin(), m_searches.end(), [](const auto* search) { return search->finds(); });
    return (finds || m_told.contains(controller.address)) && isInTheAir(controller);
}

Device SimulatedClient::deviceOf(const SimulatedController& controller) const {
    Device device;
    device.address = controller.address;
    device.name = controller.name;
    device.isGamepad = true;
    device.isHeard = isInTheAir(controller) &&
                     std::any_of(m_searches.begin(), m_searches.end(), [](const auto* s) { return s->finds(); });
    device.isInPairingMode = device.isHeard;
    device.isPaired = controller.isPaired;
    device.isTrusted = device.mayWake = controller.isTrusted;
    device.isConnected = controller.isConnected && !controller.isOff && adapterState() == AdapterState::On;
    return device;
}

std::vector<Device> SimulatedClient::devices() const {
    std::vector<Device> found;
    if (adapterState() == AdapterState::Absent) return found;
    for (const auto& line : m_world.state().lines)
        if (line.controller && isKnown(*line.controller)) found.push_back(deviceOf(*line.controller));
    return found;
}

std::optional<Device> SimulatedClient::device(const Address& address) const {
    for (auto& device : devices())
        if (device.address == address) return std::move(device);
    return std::nullopt;
}

void SimulatedClient::tell() {
    const AdapterState state = adapterState();
    std::map<Address, Device> now;
    for (auto& device : devices()) now.emplace(device.address, std::move(device));
    const auto before = std::exchange(m_told, now);
    if (std::exchange(m_toldState, state) != state) {
        for (auto* const search : m_searches) search->adapterChanged();
        if (m_listener.adapterChanged) m_listener.adapterChanged(state);
    }
    for (const auto& [address, device] : before)
        if (!now.contains(address) && m_listener.deviceRemoved) m_listener.deviceRemoved(address);
    for (const auto& [address, device] : now) {
        const auto known = before.find(address);
        if ((known == before.end() || known->second != device) && m_listener.deviceChanged)
            m_listener.deviceChanged(device);
    }
}

Client::Handle SimulatedClient::powerOn(Completion completion) {
    return std::make_unique<Change>(
        m_loop, adapterState() == AdapterState::Off ? moment : 0ms,
        [this] {
            if (adapterState() != AdapterState::Off)
                return adapterState() == AdapterState::On ? Error::None : Error::NoAdapter;
            const bool isOn = m_world.change([](SimulatedState& state) { state.adapter = AdapterState::On; });
            return isOn ? Error::None : Error::Failed;
        },
        std::move(completion));
}

Client::Handle SimulatedClient::search(Completion completion) {
    auto search = std::make_unique<Search>(*this, std::move(completion));
    search->adapterChanged();
    return search;
}

Client::Handle SimulatedClient::change(const Address& address, std::chrono::milliseconds time, Error whenUnknown,
                                       Outcome outcome, Completion completion) {
    return std::make_unique<Change>(
        m_loop, time,
        [this, address, whenUnknown, outcome = std::move(outcome)] {
            if (adapterState() != AdapterState::On) return Error::NoAdapter;
            Error error = whenUnknown;
            const bool isWritten = m_world.change([&](SimulatedState& state) {
                if (auto* const controller = state.find(address)) error = outcome(*controller);
            });
            return isWritten ? error : Error::Failed;
        },
        std::move(completion));
}

Client::Handle SimulatedClient::pair(const Address& address, Completion completion) {
    return change(
        address, moment, Error::UnknownDevice,
        [](SimulatedController& controller) {
            if (controller.isOff) return failure("pairing with", controller, Error::Unreachable);
            if (controller.refuses) return failure("pairing with", controller, Error::Refused);
            if (controller.wantsPin) {
                services::log("pairing with %s: refused, since it asks for a PIN", controller.address.forLog().c_str());
                return Error::Refused;
            }
            controller.isPaired = true;
            controller.hasForgotten = false;
            return Error::None;
        },
        std::move(completion));
}

Client::Handle SimulatedClient::trust(const Address& address, Completion completion) {
    return change(
        address, 0ms, Error::UnknownDevice,
        [](SimulatedController& controller) {
            controller.isTrusted = true;
            return Error::None;
        },
        std::move(completion));
}

Client::Handle SimulatedClient::connect(const Address& address, Completion completion) {
    const auto* const controller = m_world.state().find(address);
    const bool isOff = controller && controller->isOff;
    return change(
        address, isOff ? pageTimeout : moment, Error::UnknownDevice,
        [](SimulatedController& found) {
            if (found.isOff) return failure("connecting", found, Error::Unreachable);
            if (found.hasForgotten) return failure("connecting", found, Error::BondLost);
            if (found.refuses || !found.isPaired) return failure("connecting", found, Error::Refused);
            found.isConnected = true;
            return Error::None;
        },
        std::move(completion));
}

Client::Handle SimulatedClient::disconnect(const Address& address, Completion completion) {
    return change(
        address, 0ms, Error::None,
        [](SimulatedController& controller) {
            controller.isConnected = false;
            return Error::None;
        },
        std::move(completion));
}

Client::Handle SimulatedClient::remove(const Address& address, Completion completion) {
    return change(
        address, 0ms, Error::None,
        [](SimulatedController& controller) {
            controller.isPaired = controller.isTrusted = controller.isConnected = controller.hasForgotten = false;
            return Error::None;
        },
        std::move(completion));
}

void SimulatedClient::whenQuiet(std::function<void()> done) { m_quiet = done ? m_loop.soon(std::move(done)) : nullptr; }

} // namespace bluetooth
