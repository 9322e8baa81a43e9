#include "services/bluetooth/SystemClient.h"

#include "services/bluetooth/DeviceOperation.h"
#include "services/bluetooth/PowerOnOperation.h"
#include "services/bluetooth/SearchOperation.h"
#include "services/bluetooth/clients.h"
#include "services/bluetooth/service_names.h"
#include "services/common/log.h"

#include <algorithm>
#include <utility>

namespace bluetooth {
namespace {

// A service that is there answers well within it, unless it hangs.
constexpr std::chrono::seconds settleTime{2};

bool matches(const char* text, const char* wanted) { return text && std::string_view(text) == wanted; }

} // namespace

std::unique_ptr<Client> makeSystemClient(services::EventLoop& loop) { return std::make_unique<SystemClient>(loop); }

SystemClient::SystemClient(services::EventLoop& loop)
    : m_loop(loop), m_settle(loop.after(settleTime,
                                        [this] {
                                            m_isSettled = true;
                                            tell();
                                        })),
      m_bus(
          loop, services::Bus::Which::System, [this] { busIsUp(); }, [this] { busIsDown(); }) {}

SystemClient::~SystemClient() = default;

AdapterState SystemClient::adapterState() const {
    if (!m_hasObjects) return m_isSettled ? AdapterState::Absent : AdapterState::Unknown;
    return m_objects.stateOf(m_objects.adapterInUse());
}

std::optional<Device> SystemClient::device(const Address& address) const {
    const std::string path = m_objects.pathOf(address);
    if (path.empty()) return std::nullopt;
    const DeviceObject& object = m_objects.devices().at(path);
    Device device = object.device;
    device.isHeard = m_searches > 0 && (object.hasSignalStrength || m_appeared.contains(path));
    device.isInPairingMode = device.isHeard && object.classOfDevice != 0;
    return device;
}

std::vector<Device> SystemClient::devices() const {
    std::set<Address> addresses;
    for (const auto& [path, object] : m_objects.devices())
        if (object.hasAddress) addresses.insert(object.device.address);
    std::vector<Device> found;
    for (const auto& address : addresses)
        if (auto device = this->device(address)) found.push_back(*std::move(device));
    return found;
}

Client::Handle SystemClient::powerOn(Completion completion) {
    return std::make_unique<PowerOnOperation>(*this, std::move(completion));
}

Client::Handle SystemClient::search(Completion completion) {
    if (m_searches == 0) m_appeared.clear();
    return std::make_unique<SearchOperation>(*this, std::move(completion));
}

Client::Handle SystemClient::pair(const Address& address, Completion completion) {
    return std::make_unique<DeviceOperation>(*this, DeviceOperation::Kind::Pair, address, std::move(completion));
}

Client::Handle SystemClient::trust(const Address& address, Completion completion) {
    return std::make_unique<DeviceOperation>(*this, DeviceOperation::Kind::Trust, address, std::move(completion));
}

Client::Handle SystemClient::connect(const Address& address, Completion completion) {
    return std::make_unique<DeviceOperation>(*this, DeviceOperation::Kind::Connect, address, std::move(completion));
}

Client::Handle SystemClient::disconnect(const Address& address, Completion completion) {
    return std::make_unique<DeviceOperation>(*this, DeviceOperation::Kind::Disconnect, address, std::move(completion));
}

Client::Handle SystemClient::remove(const Address& address, Completion completion) {
    return std::make_unique<DeviceOperation>(*this, DeviceOperation::Kind::Remove, address, std::move(completion));
}

void SystemClient::searchBegan() {
    ++m_searches;
    if (m_listener.searchBegan) m_listener.searchBegan();
    tell();
}

void SystemClient::searchEnded() {
    --m_searches;
    m_tellSoon = m_loop.soon([this] { tell(); });
}

void SystemClient::busIsUp() {
    using std::string;
    const string sender = string("type='signal',sender='") + serviceName + "',interface='";
    m_matches.clear();
    m_matches.push_back(m_bus.match(string("type='signal',sender='") + busName + "',interface='" + busName +
                                        "',member='NameOwnerChanged',arg0='" + serviceName + "'",
                                    ownerChanged, this));
    m_matches.push_back(m_bus.match(sender + objectsInterface + "'", objectsSignal, this));
    m_matches.push_back(
        m_bus.match(sender + propertiesInterface + "',path_namespace='" + managerPath + "'", propertiesSignal, this));
    auto ask = m_bus.method(busName, busPath, busName, "GetNameOwner");
    ::sd_bus_message_append(ask.get(), "s", serviceName);
    m_ownerCall = m_bus.call(std::move(ask), [this](const services::Bus::Reply& reply) {
        const char* owner = "";
        if (reply.message) ::sd_bus_message_read(reply.message, "s", &owner);
        ownerIs(owner);
    });
}

void SystemClient::busIsDown() {
    m_matches.clear();
    ownerIs("");
}

int SystemClient::ownerChanged(::sd_bus_message* message, void* self, ::sd_bus_error*) {
    const char* name = nullptr;
    const char* before = nullptr;
    const char* owner = nullptr;
    if (::sd_bus_message_read(message, "sss", &name, &before, &owner) > 0 && matches(name, serviceName)) {
        static_cast<SystemClient*>(self)->m_ownerCall.reset();
        static_cast<SystemClient*>(self)->ownerIs(owner);
    }
    return 0;
}

void SystemClient::ownerIs(const std::string& owner) {
    m_owner = owner;
    m_isSettled = true;
    m_settle.reset();
    m_hasObjects = false;
    m_objects.clear();
    m_appeared.clear();
    m_objectsCall.reset();
    if (!owner.empty()) {
        // What it has is not known yet: nothing is told to be gone before it has had its moment to say.
        m_isSettled = false;
        m_settle = m_loop.after(settleTime, [this] {
            m_isSettled = true;
            tell();
        });
        askForObjects();
    }
    tell();
}

void SystemClient::askForObjects() {
    auto ask = m_bus.method(m_owner.c_str(), rootPath, objectsInterface, "GetManagedObjects");
    m_objectsCall = m_bus.call(std::move(ask), [this](const services::Bus::Reply& reply) { objectsArrived(reply); });
}

void SystemClient::objectsArrived(const services::Bus::Reply& reply) {
    if (!reply.message || !m_objects.readAll(reply.message)) {
        services::log("asking the Bluetooth service for its devices: %s",
                      reply.text.empty() ? "an answer of another kind" : reply.text.c_str());
        m_objects.clear();
    }
    m_hasObjects = true;
    m_settle.reset();
    tell();
}

int SystemClient::objectsSignal(::sd_bus_message* message, void* data, ::sd_bus_error*) {
    auto& self = *static_cast<SystemClient*>(data);
    const char* path = nullptr;
    // Until the first picture has come, what a signal says is in it already.
    if (!self.m_hasObjects || ::sd_bus_message_read(message, "o", &path) <= 0) return 0;
    if (matches(::sd_bus_message_get_member(message), "InterfacesAdded")) {
        const bool isNew = !self.m_objects.devices().contains(path);
        self.m_objects.readInterfaces(path, message);
        if (isNew) self.m_appeared.insert(path);
    } else if (matches(::sd_bus_message_get_member(message), "InterfacesRemoved")) {
        self.m_objects.readRemoved(path, message);
        if (!self.m_objects.devices().contains(path)) self.m_appeared.erase(path);
    }
    self.tell();
    return 0;
}

int SystemClient::propertiesSignal(::sd_bus_message* message, void* data, ::sd_bus_error*) {
    auto& self = *static_cast<SystemClient*>(data);
    const char* const path = ::sd_bus_message_get_path(message);
    if (!self.m_hasObjects || !path || !matches(::sd_bus_message_get_member(message), "PropertiesChanged")) return 0;
    self.m_objects.readChanges(path, message);
    self.tell();
    return 0;
}

void SystemClient::tell() {
    const AdapterState state = adapterState();
    std::map<Address, Device> now;
    for (auto& device : devices()) now.emplace(device.address, std::move(device));
    const auto before = std::exchange(m_told, now);

    if (state != m_toldState) {
        m_toldState = state;
        if (m_listener.adapterChanged) m_listener.adapterChanged(state);
    }
    for (const auto& [address, device] : before)
        if (!now.contains(address) && m_listener.deviceRemoved) m_listener.deviceRemoved(address);
    for (const auto& [address, device] : now) {
        const auto known = before.find(address);
        if ((known == before.end() || known->second != device) && m_listener.deviceChanged)
            m_listener.deviceChanged(device);
    }
    // Each may end others, and begin new ones.
    for (auto* const operation : std::vector(m_operations))
        if (std::find(m_operations.begin(), m_operations.end(), operation) != m_operations.end())
            operation->objectsChanged();
}

} // namespace bluetooth
