#pragma once

#include "services/common/EventLoop.h"
#include "services/common/Message.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace testing_support {

// One device in the mock's air. It has an object at the service once it was found, or when it is paired.
struct MockDevice {
    std::string address = {}; // "00:AA:01:01:00:01"
    std::string adapter = {}; // that knows it; empty: the first
    std::string name = "Wireless Controller";
    std::uint32_t classOfDevice = 0x002508; // a gamepad
    std::uint16_t appearance = 0;           // of the low-energy radio; 0: it says none
    std::string icon = {};                  // what the service takes it for; empty: it does not say
    bool isDiscoverable = true;             // answers a search
    bool wantsPin = false;
    bool hasForgotten = false; // has lost the keys of a pairing
    bool isKnown = false;      // has an object
    bool isPaired = false;
    bool isTrusted = false;
    bool mayWake = false;
    bool isConnected = false;
    std::optional<int> battery = {};
};

// The system's Bluetooth service as its interface is documented, on the bus that DBUS_SYSTEM_BUS_ADDRESS names, run by
// the test's own loop. Does what it is asked until a test says otherwise.
class MockBluetoothService {
public:
    explicit MockBluetoothService(services::EventLoop& loop);
    ~MockBluetoothService();
    MockBluetoothService(const MockBluetoothService&) = delete;
    MockBluetoothService& operator=(const MockBluetoothService&) = delete;

    // The service comes, or ends as a crash ends it. Adapters and pairings outlast it, searches and agents do not.
    void start();
    void vanish();

    void addAdapter(const std::string& name = "hci0", bool isPowered = true);
    void removeAdapter(const std::string& name);
    void addDevice(MockDevice device);
    // With its object.
    void removeDevice(const std::string& address);
    MockDevice& device(const std::string& address);
    // A search finds it.
    void appear(const std::string& address);
    // Asks all agents this of a device: "RequestConfirmation", "AuthorizeService" ...
    void askAgents(const std::string& member, const std::string& address);
    // Tells of a change made to a device: by itself connected, gone, trusted by another program.
    void changed(const std::string& address);
    // Signals of the right names that hold something else than documented.
    void sendNonsense(const std::string& address);
    void setPowered(const std::string& adapter, bool isPowered);

    // What becomes of calls of this member ("Connect", "Pair", "Set Powered" ...) from now on: an error of the service,
    // no answer at all until let go, or something that is no proper answer.
    void fail(const std::string& member, const std::string& error, const std::string& text = "");
    void stall(const std::string& member);
    void answerNonsense(const std::string& member);
    void behave(const std::string& member);
    // Behaves again, and deals with the calls that were not answered.
    void letGo(const std::string& member);
    // Called as a call of this member arrives, before it is dealt with.
    std::function<void(const std::string& member)> arrived;

    // What was asked, in order: "StartDiscovery hci0", "Pair 00:01", "Set Trusted 00:01", "RegisterAgent
    // NoInputNoOutput" ... Devices by the end of their address.
    std::vector<std::string> calls;
    // What the clients' agents answered: "" for yes, else the error's name.
    std::vector<std::string> agentAnswers;
    bool isSearching() const { return !m_searches.empty(); }
    bool hasAgent() const { return !m_agents.empty(); }
    bool isPairing() const { return static_cast<bool>(m_pairing); }

private:
    struct Adapter {
        bool isPowered = true;
        bool isBlocked = false;
    };
    struct Fault {
        enum class Kind { Fail, Stall, Nonsense } kind;
        std::string error;
        std::string text;
    };

    std::string pathOf(const MockDevice& device) const;
    MockDevice* deviceAt(const std::string& path);
    static std::string shortName(const std::string& path);
    int handle(::sd_bus_message* message);
    int dealWith(::sd_bus_message* message, const std::string& member, const std::string& path);
    int setProperty(::sd_bus_message* message, const std::string& path);
    int pair(::sd_bus_message* message, MockDevice& device);
    int connect(::sd_bus_message* message, MockDevice& device);
    int startSearch(::sd_bus_message* message, const std::string& adapter);
    void endPairing(const char* error);
    void reply(::sd_bus_message* message) const;
    void replyError(::sd_bus_message* message, const std::string& error, const std::string& text) const;
    void sendObjects(::sd_bus_message* message);
    void appendInterfaces(::sd_bus_message* message, const MockDevice& device) const;
    void appendDevice(::sd_bus_message* message, const MockDevice& device) const;
    void announce(const MockDevice& device);
    void announceAdapter(const std::string& name);
    void announceGone(const std::string& path, const char* interface);
    void clientGone(const std::string& name);
    static int called(::sd_bus_message* message, void* self, ::sd_bus_error*);
    static int nameChanged(::sd_bus_message* message, void* self, ::sd_bus_error*);
    static int agentAnswered(::sd_bus_message* message, void* self, ::sd_bus_error*);

    services::EventLoop& m_loop;
    ::sd_bus* m_bus = nullptr;
    std::map<std::string, Adapter> m_adapters;
    std::vector<MockDevice> m_devices;
    std::map<std::string, Fault> m_faults;
    std::map<std::string, std::string> m_agents; // by client: its agent's path
    std::set<std::string> m_searches;            // clients
    services::Message m_pairing;                 // not answered yet
    std::string m_pairingPath;
    std::vector<std::pair<std::string, services::Message>> m_stalled;
    std::vector<services::EventLoop::Source> m_later;
};

} // namespace testing_support
