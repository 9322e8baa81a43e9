#include "tests/support/MockBluetoothService.h"

#include <algorithm>
#include <cstdlib>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace testing_support {
namespace {

constexpr const char* device1 = "org.bluez.Device1";

void check(int result) {
    if (result < 0) throw std::runtime_error("mock Bluetooth service: error " + std::to_string(-result));
}

} // namespace

MockBluetoothService::MockBluetoothService(services::EventLoop& loop) : m_loop(loop) { start(); }

MockBluetoothService::~MockBluetoothService() { vanish(); }

void MockBluetoothService::start() {
    check(::sd_bus_new(&m_bus));
    check(::sd_bus_set_address(m_bus, std::getenv("DBUS_SYSTEM_BUS_ADDRESS")));
    check(::sd_bus_set_bus_client(m_bus, 1));
    check(::sd_bus_start(m_bus));
    check(::sd_bus_attach_event(m_bus, m_loop.raw(), SD_EVENT_PRIORITY_NORMAL));
    check(::sd_bus_add_fallback(m_bus, nullptr, "/", called, this));
    check(::sd_bus_match_signal(m_bus, nullptr, "org.freedesktop.DBus", nullptr, "org.freedesktop.DBus",
                                "NameOwnerChanged", nameChanged, this));
    check(::sd_bus_request_name(m_bus, "org.bluez", 0));
}

void MockBluetoothService::vanish() {
    m_pairing.reset();
    m_stalled.clear();
    m_later.clear();
    m_agents.clear();
    m_searches.clear();
    if (m_bus) ::sd_bus_close_unref(std::exchange(m_bus, nullptr));
    for (auto& device : m_devices) {
        device.isKnown = device.isPaired;
        device.isConnected = false;
    }
}

void MockBluetoothService::fail(const std::string& member, const std::string& error, const std::string& text) {
    m_faults[member] = {Fault::Kind::Fail, error, text};
}
void MockBluetoothService::stall(const std::string& member) { m_faults[member] = {Fault::Kind::Stall, "", ""}; }
void MockBluetoothService::answerNonsense(const std::string& member) {
    m_faults[member] = {Fault::Kind::Nonsense, "", ""};
}
void MockBluetoothService::behave(const std::string& member) { m_faults.erase(member); }

void MockBluetoothService::letGo(const std::string& member) {
    behave(member);
    for (auto& [stalled, message] : std::exchange(m_stalled, {})) {
        if (stalled == member)
            dealWith(message.get(), member, ::sd_bus_message_get_path(message.get()));
        else
            m_stalled.emplace_back(stalled, std::move(message));
    }
}

std::string MockBluetoothService::pathOf(const MockDevice& device) const {
    const std::string first = m_adapters.empty() ? "hci0" : m_adapters.begin()->first;
    std::string path = "/org/bluez/" + (device.adapter.empty() ? first : device.adapter) + "/dev_";
    for (const char c : device.address) path += c == ':' ? '_' : c;
    return path;
}

MockDevice* MockBluetoothService::deviceAt(const std::string& path) {
    for (auto& device : m_devices)
        if (device.isKnown && pathOf(device) == path) return &device;
    return nullptr;
}

MockDevice& MockBluetoothService::device(const std::string& address) {
    for (auto& device : m_devices)
        if (device.address == address) return device;
    throw std::runtime_error("mock Bluetooth service: no device " + address);
}

std::string MockBluetoothService::shortName(const std::string& path) {
    auto last = path.substr(path.rfind('/') + 1);
    if (!last.starts_with("dev_")) return last;
    std::string end = last.substr(last.size() - 5);
    end[2] = ':';
    return end;
}

int MockBluetoothService::called(::sd_bus_message* message, void* self, ::sd_bus_error*) {
    return static_cast<MockBluetoothService*>(self)->handle(message);
}

int MockBluetoothService::handle(::sd_bus_message* message) {
    std::string member = ::sd_bus_message_get_member(message);
    const std::string path = ::sd_bus_message_get_path(message);
    std::string what = shortName(path);
    if (member == "Set") {
        const char* interface = nullptr;
        const char* property = nullptr;
        check(::sd_bus_message_read(message, "ss", &interface, &property));
        member += std::string(" ") + property;
    } else if (member == "RemoveDevice" || member == "RegisterAgent") {
        const char* object = nullptr;
        const char* capability = "";
        check(::sd_bus_message_read(message, "o", &object));
        if (member == "RegisterAgent") check(::sd_bus_message_read(message, "s", &capability));
        what = member == "RegisterAgent" ? capability : shortName(object);
        check(::sd_bus_message_rewind(message, 1));
    } else if (member == "UnregisterAgent") {
        what.clear();
    }
    if (member != "GetManagedObjects") calls.push_back(what.empty() ? member : member + " " + what);
    if (arrived) arrived(member);
    if (!m_bus) return 1; // the test has had enough

    if (const auto fault = m_faults.find(member); fault != m_faults.end()) {
        switch (fault->second.kind) {
        case Fault::Kind::Fail:
            replyError(message, fault->second.error, fault->second.text);
            return 1;
        case Fault::Kind::Stall:
            m_stalled.emplace_back(member, ::sd_bus_message_ref(message));
            return 1;
        case Fault::Kind::Nonsense:
            ::sd_bus_reply_method_return(message, "sa{sv}u", "what?", 0, 7U);
            return 1;
        }
    }
    return dealWith(message, member, path);
}

int MockBluetoothService::dealWith(::sd_bus_message* message, const std::string& member, const std::string& path) {
    const std::string sender = ::sd_bus_message_get_sender(message);
    if (member == "GetManagedObjects") return sendObjects(message), 1;
    if (member.starts_with("Set ")) return setProperty(message, path);
    if (member == "RegisterAgent") {
        const char* agent = nullptr;
        check(::sd_bus_message_read(message, "o", &agent));
        if (!m_agents.emplace(sender, agent).second)
            return replyError(message, "org.bluez.Error.AlreadyExists", "Already Exists"), 1;
        return reply(message), 1;
    }
    if (member == "UnregisterAgent") {
        if (m_agents.erase(sender) == 0)
            return replyError(message, "org.bluez.Error.DoesNotExist", "Does Not Exist"), 1;
        return reply(message), 1;
    }
    if (member == "StartDiscovery") return startSearch(message, shortName(path));
    if (member == "StopDiscovery") {
        const auto search = m_searches.find(sender);
        if (search == m_searches.end()) return replyError(message, "org.bluez.Error.Failed", "No discovery started"), 1;
        m_searches.erase(search);
        return reply(message), 1;
    }
    if (member == "RemoveDevice") {
        const char* object = nullptr;
        check(::sd_bus_message_read(message, "o", &object));
        MockDevice* const device = deviceAt(object);
        if (!device) return replyError(message, "org.bluez.Error.DoesNotExist", "Does Not Exist"), 1;
        const std::string gone = object;
        device->isKnown = device->isPaired = device->isTrusted = device->isConnected = device->hasForgotten = false;
        announceGone(gone, device1);
        return reply(message), 1;
    }
    MockDevice* const device = deviceAt(path);
    if (!device) return replyError(message, "org.freedesktop.DBus.Error.UnknownObject", "No object at " + path), 1;
    if (member == "Pair") return pair(message, *device);
    if (member == "CancelPairing") {
        if (!m_pairing) return replyError(message, "org.bluez.Error.DoesNotExist", "Does Not Exist"), 1;
        endPairing("org.bluez.Error.AuthenticationCanceled");
        return reply(message), 1;
    }
    if (member == "Connect") return connect(message, *device);
    if (member == "Disconnect") {
        if (std::exchange(device->isConnected, false)) changed(device->address);
        return reply(message), 1; // also when it was not connected
    }
    return 0;
}

int MockBluetoothService::setProperty(::sd_bus_message* message, const std::string& path) {
    const char* interface = nullptr;
    const char* property = nullptr;
    int value = 0;
    check(::sd_bus_message_rewind(message, 1));
    check(::sd_bus_message_read(message, "ss", &interface, &property));
    check(services::readVariant(message, "b", value) ? 0 : -EINVAL);
    const std::string_view name = property;
    if (name == "Powered") {
        reply(message);
        setPowered(shortName(path), value != 0);
        return 1;
    }
    MockDevice* const device = deviceAt(path);
    if (!device) return replyError(message, "org.freedesktop.DBus.Error.UnknownObject", "No object at " + path), 1;
    (name == "Trusted" ? device->isTrusted : device->mayWake) = value != 0;
    changed(device->address);
    return reply(message), 1;
}

int MockBluetoothService::startSearch(::sd_bus_message* message, const std::string& adapter) {
    if (!m_adapters.contains(adapter) || !m_adapters[adapter].isPowered)
        return replyError(message, "org.bluez.Error.NotReady", "Resource Not Ready"), 1;
    if (!m_searches.insert(::sd_bus_message_get_sender(message)).second)
        return replyError(message, "org.bluez.Error.InProgress", "Operation already in progress"), 1;
    reply(message);
    for (const auto& device : m_devices)
        if (device.isDiscoverable) appear(device.address);
    return 1;
}

int MockBluetoothService::pair(::sd_bus_message* message, MockDevice& device) {
    if (device.isPaired) return replyError(message, "org.bluez.Error.AlreadyExists", "Already Exists"), 1;
    if (m_pairing) return replyError(message, "org.bluez.Error.InProgress", "In Progress"), 1;
    if (!m_agents.contains(::sd_bus_message_get_sender(message)))
        return replyError(message, "org.bluez.Error.AgentNotAvailable", "No agent available"), 1;
    m_pairing.reset(::sd_bus_message_ref(message));
    m_pairingPath = pathOf(device);
    if (device.wantsPin) return askAgents("RequestPinCode", device.address), 1;
    device.isConnected = true;
    changed(device.address);
    m_later.push_back(m_loop.soon([this, address = device.address] {
        if (!m_pairing) return;
        this->device(address).isPaired = true;
        changed(address);
        endPairing(nullptr);
    }));
    return 1;
}

int MockBluetoothService::connect(::sd_bus_message* message, MockDevice& device) {
    if (device.hasForgotten) return replyError(message, "org.bluez.Error.Failed", "br-connection-key-missing"), 1;
    device.isConnected = true;
    changed(device.address);
    return reply(message), 1;
}

void MockBluetoothService::endPairing(const char* error) {
    const auto message = std::move(m_pairing);
    if (!message) return;
    if (error)
        replyError(message.get(), error, "Authentication failed");
    else
        reply(message.get());
}

void MockBluetoothService::askAgents(const std::string& member, const std::string& address) {
    const std::string path = pathOf({.address = address});
    for (const auto& [client, agent] : m_agents) {
        ::sd_bus_message* question = nullptr;
        check(::sd_bus_message_new_method_call(m_bus, &question, client.c_str(), agent.c_str(), "org.bluez.Agent1",
                                               member.c_str()));
        const services::Message kept(question);
        if (member != "Cancel" && member != "Release") check(::sd_bus_message_append(question, "o", path.c_str()));
        if (member == "DisplayPinCode") check(::sd_bus_message_append(question, "s", "271828"));
        if (member == "DisplayPasskey") check(::sd_bus_message_append(question, "uq", 271828U, 0U));
        if (member == "RequestConfirmation") check(::sd_bus_message_append(question, "u", 271828U));
        if (member == "AuthorizeService")
            check(::sd_bus_message_append(question, "s", "00001124-0000-1000-8000-00805f9b34fb"));
        check(::sd_bus_call_async(m_bus, nullptr, question, agentAnswered, this, 0));
    }
}

int MockBluetoothService::agentAnswered(::sd_bus_message* message, void* self, ::sd_bus_error*) {
    auto& mock = *static_cast<MockBluetoothService*>(self);
    const auto* const error = ::sd_bus_message_get_error(message);
    mock.agentAnswers.emplace_back(error ? error->name : "");
    mock.endPairing("org.bluez.Error.AuthenticationFailed");
    return 0;
}

void MockBluetoothService::reply(::sd_bus_message* message) const { ::sd_bus_reply_method_return(message, ""); }

void MockBluetoothService::replyError(::sd_bus_message* message, const std::string& error,
                                      const std::string& text) const {
    ::sd_bus_reply_method_errorf(message, error.c_str(), "%s", text.c_str());
}

int MockBluetoothService::nameChanged(::sd_bus_message* message, void* self, ::sd_bus_error*) {
    const char* name = nullptr;
    const char* before = nullptr;
    const char* after = nullptr;
    if (::sd_bus_message_read(message, "sss", &name, &before, &after) > 0 && *after == '\0')
        static_cast<MockBluetoothService*>(self)->clientGone(name);
    return 0;
}

void MockBluetoothService::clientGone(const std::string& name) {
    m_agents.erase(name);
    m_searches.erase(name);
    if (m_pairing && name == ::sd_bus_message_get_sender(m_pairing.get())) m_pairing.reset();
}

} // namespace testing_support
