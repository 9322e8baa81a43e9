// The mock of the Bluetooth service that other tests have says what the real one says: the same calls to each, and what
// came of them in lines.

#include "services/common/Bus.h"
#include "tests/machine/support/BluetoothWorld.h"
#include "tests/support/MockBluetoothService.h"
#include "tests/support/PrivateBus.h"

#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <string>

using namespace std::chrono_literals;

namespace machine {
namespace {

constexpr auto answerTime = 90s; // under emulation, on a busy computer
constexpr const char* manager = "/org/bluez";
constexpr const char* adapter = "/org/bluez/hci0";
constexpr const char* device = "/org/bluez/hci0/dev_00_AA_01_01_00_01";
constexpr const char* nobody = "/org/bluez/hci0/dev_00_AA_01_01_00_77";
constexpr const char* agent = "/agent";
constexpr const char* adapter1 = "org.bluez.Adapter1";
constexpr const char* device1 = "org.bluez.Device1";
constexpr const char* agentManager1 = "org.bluez.AgentManager1";

// A program that talks to whatever has the service's name on the system's bus.
class Conversation {
public:
    explicit Conversation(services::EventLoop& loop)
        : m_loop(loop), m_bus(loop, services::Bus::Which::System, [this] { listen(); }) {
        m_loop.runUntil([this] { return m_bus.isUp(); }, answerTime);
    }

    // "ok", or the error's name.
    std::string ask(const char* path, const char* interface, const char* member,
                    const std::function<void(::sd_bus_message*)>& arguments = {}) {
        std::string answer;
        call(path, interface, member, arguments,
             [&answer](const services::Bus::Reply& reply) { answer = reply.error.empty() ? "ok" : reply.error; });
        return answer;
    }
    std::string setFlag(const char* path, const char* interface, const char* property, int value) {
        return ask(path, "org.freedesktop.DBus.Properties", "Set", [=](::sd_bus_message* message) {
            ::sd_bus_message_append(message, "ssv", interface, property, "b", value);
        });
    }
    // All interfaces of all objects, with the types of their properties.
    using Types = std::map<std::string, std::string>;
    std::map<std::string, Types> interfaces() {
        std::map<std::string, Types> found;
        call("/", "org.freedesktop.DBus.ObjectManager", "GetManagedObjects", {},
             [&found](const services::Bus::Reply& reply) {
                 if (reply.message) readObjects(reply.message, found);
             });
        return found;
    }
    bool waitForSignal(const std::string& line) {
        return m_loop.runUntil([&] { return m_signals.contains(line); }, answerTime);
    }

private:
    void call(const char* path, const char* interface, const char* member,
              const std::function<void(::sd_bus_message*)>& arguments, const services::Bus::Replied& replied) {
        bool isOver = false;
        auto message = m_bus.method("org.bluez", path, interface, member);
        if (arguments) arguments(message.get());
        const auto handle = m_bus.call(std::move(message), [&](const services::Bus::Reply& reply) {
            isOver = true;
            replied(reply);
        });
        m_loop.runUntil([&isOver] { return isOver; }, answerTime);
    }
    static void readObjects(::sd_bus_message* message, std::map<std::string, Types>& found) {
        ::sd_bus_message_enter_container(message, 'a', "{oa{sa{sv}}}");
        while (::sd_bus_message_enter_container(message, 'e', "oa{sa{sv}}") > 0) {
            ::sd_bus_message_skip(message, "o");
            services::readDictionary(message, "a{sv}", [&](const std::string& interface) {
                auto& types = found[interface];
                return services::readDictionary(message, "v", [&](const std::string& name) {
                    const char* type = nullptr;
                    ::sd_bus_message_peek_type(message, nullptr, &type);
                    types[name] = type ? type : "";
                    return false;
                });
            });
            ::sd_bus_message_exit_container(message);
        }
    }
    void listen() { m_match = m_bus.match("type='signal',sender='org.bluez'", heard, this); }
    // "MEMBER SIGNATURE SHORT-PATH"
    static int heard(::sd_bus_message* message, void* self, ::sd_bus_error*) {
        std::string path = ::sd_bus_message_get_path(message);
        const std::string member = ::sd_bus_message_get_member(message);
        const std::string line = member + " " + ::sd_bus_message_get_signature(message, /*complete=*/1);
        if (const char* object = nullptr; member.starts_with("Interfaces")) {
            if (::sd_bus_message_read(message, "o", &object) > 0) path = object;
        }
        static_cast<Conversation*>(self)->m_signals.insert(line + " " + path.substr(path.rfind('/') + 1));
        return 0;
    }

    services::EventLoop& m_loop;
    std::set<std::string> m_signals;
    services::Bus m_bus;
    services::Slot m_match;
};

void object(::sd_bus_message* message, const char* path) { ::sd_bus_message_append(message, "o", path); }

constexpr const char* foundSignal = "InterfacesAdded oa{sa{sv}} dev_00_AA_01_01_00_01";

void find(Conversation& service) {
    EXPECT_EQ(service.ask(adapter, adapter1, "StartDiscovery"), "ok");
    EXPECT_TRUE(service.waitForSignal(foundSignal));
}

// What a client of ours may ask, in the order in which it would; one line for each answer. The other radio, or the
// mock's device, answers a search.
std::vector<std::string> talk(Conversation& service) {
    std::vector<std::string> lines;
    const auto note = [&lines](const std::string& what, const std::string& answer) {
        lines.push_back(what + ": " + answer);
    };
    const auto withDevice = [](const char* path) { return [path](auto* message) { object(message, path); }; };
    const auto withAgent = [](auto* message) { ::sd_bus_message_append(message, "os", agent, "NoInputNoOutput"); };

    note("off", service.setFlag(adapter, adapter1, "Powered", 0));
    note("search while off", service.ask(adapter, adapter1, "StartDiscovery"));
    note("on", service.setFlag(adapter, adapter1, "Powered", 1));
    note("on again", service.setFlag(adapter, adapter1, "Powered", 1));
    note("end of no search", service.ask(adapter, adapter1, "StopDiscovery"));
    note("search", service.ask(adapter, adapter1, "StartDiscovery"));
    note("found", service.waitForSignal(foundSignal) ? "yes" : "no");
    note("search twice", service.ask(adapter, adapter1, "StartDiscovery"));
    note("end of search", service.ask(adapter, adapter1, "StopDiscovery"));
    note("disconnect what is not connected", service.ask(device, device1, "Disconnect"));
    note("cancel no pairing", service.ask(device, device1, "CancelPairing"));
    note("agent", service.ask(manager, agentManager1, "RegisterAgent", withAgent));
    note("agent twice", service.ask(manager, agentManager1, "RegisterAgent", withAgent));
    note("pair nobody", service.ask(nobody, device1, "Pair"));
    note("pair", service.ask(device, device1, "Pair"));
    note("told", service.waitForSignal("PropertiesChanged sa{sv}as dev_00_AA_01_01_00_01") ? "yes" : "no");
    note("pair twice", service.ask(device, device1, "Pair"));
    note("trust", service.setFlag(device, device1, "Trusted", 1));
    note("no agent", service.ask(manager, agentManager1, "UnregisterAgent", withDevice(agent)));
    note("no agent twice", service.ask(manager, agentManager1, "UnregisterAgent", withDevice(agent)));
    note("remove", service.ask(adapter, adapter1, "RemoveDevice", withDevice(device)));
    note("gone", service.waitForSignal("InterfacesRemoved oas dev_00_AA_01_01_00_01") ? "yes" : "no");
    note("remove twice", service.ask(adapter, adapter1, "RemoveDevice", withDevice(device)));
    note("trust nobody", service.setFlag(nobody, device1, "Trusted", 1));
    return lines;
}

// The mock, on a system bus of its own, with a controller in its air.
struct Mock {
    testing_support::PrivateBus bus{testing_support::PrivateBus::Start::Now, "DBUS_SYSTEM_BUS_ADDRESS"};
    services::EventLoop loop;
    testing_support::MockBluetoothService service{loop};

    Mock() {
        service.addAdapter();
        service.addDevice({.address = BluetoothWorld::kController});
    }
};

// The real one, with a controller in pairing mode.
BluetoothWorld& realWorld() {
    auto& world = BluetoothWorld::shared();
    world.plug(BluetoothWorld::Radios::Classic);
    world.startService();
    world.prepare();
    return world;
}

TEST(MockBluetooth, AnswersAsTheRealServiceDoes) {
    const auto& world = realWorld();
    services::EventLoop loop;
    Conversation withReal(loop);
    const auto real = talk(withReal);
    EXPECT_FALSE(world.isSearching());

    Mock mock;
    Conversation withMock(mock.loop);

    EXPECT_EQ(talk(withMock), real);
}

TEST(MockBluetooth, ShowsNothingThatTheRealServiceDoesNotShow) {
    realWorld();
    services::EventLoop loop;
    Conversation withReal(loop);
    find(withReal);
    auto real = withReal.interfaces();

    Mock mock;
    Conversation withMock(mock.loop);
    find(withMock);

    const auto shown = withMock.interfaces();
    EXPECT_TRUE(shown.contains(adapter1) && shown.contains(device1));
    for (const auto& [interface, types] : shown) {
        EXPECT_TRUE(real.contains(interface)) << interface;
        for (const auto& [name, type] : types) EXPECT_EQ(real[interface][name], type) << interface << " " << name;
    }
}

} // namespace
} // namespace machine
