#include "tests/machine/support/BluetoothWorld.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <systemd/sd-bus.h>

namespace machine {
namespace {

// Starting the service takes seconds under emulation.
constexpr auto kStartTimeout = 3 * kLongTimeout;
constexpr const char* kService = "org.bluez";
constexpr const char* kAdapter = "org.bluez.Adapter1";
constexpr const char* kOurs = "/org/bluez/hci0";
constexpr const char* kTheirs = "/org/bluez/hci1";
constexpr const char* kControllersDevice = "/org/bluez/hci0/dev_00_AA_01_01_00_01";
constexpr uint32_t kGamepad = 0x0508; // major class: peripheral; minor class: gamepad
constexpr const char* kOurDevice = "/org/bluez/hci1/dev_00_AA_01_00_00_00";

// A connection for one question, since the bus is asked seldom.
class Bus {
public:
    Bus() { ::sd_bus_open_system(&m_bus); }
    ~Bus() { ::sd_bus_flush_close_unref(m_bus); }
    Bus(const Bus&) = delete;
    Bus& operator=(const Bus&) = delete;

    bool flag(const char* path, const char* interface, const char* name) const {
        int value = 0;
        return ::sd_bus_get_property_trivial(m_bus, kService, path, interface, name, nullptr, 'b', &value) >= 0 &&
               value != 0;
    }
    uint32_t number(const char* path, const char* interface, const char* name) const {
        uint32_t value = 0;
        ::sd_bus_get_property_trivial(m_bus, kService, path, interface, name, nullptr, 'u', &value);
        return value;
    }
    template <typename Value> bool set(const char* path, const char* name, const char* type, Value value) const {
        return ::sd_bus_set_property(m_bus, kService, path, kAdapter, name, nullptr, type, value) >= 0;
    }
    void removeDevice(const char* adapter, const char* device) const {
        ::sd_bus_call_method(m_bus, kService, adapter, kAdapter, "RemoveDevice", nullptr, nullptr, "o", device);
    }
    bool hasAdapter(const char* path) const {
        char* address = nullptr;
        const bool has =
            ::sd_bus_get_property_string(m_bus, kService, path, kAdapter, "Address", nullptr, &address) >= 0;
        std::free(address);
        return has;
    }

private:
    sd_bus* m_bus = nullptr;
};

void must(bool fact, const char* what) {
    if (!fact) throw std::runtime_error(what);
}

bool radioExists(int number) { return std::filesystem::exists("/sys/class/bluetooth/hci" + std::to_string(number)); }

bool serviceHasBoth() {
    const Bus bus;
    return bus.hasAdapter(kOurs) && bus.hasAdapter(kTheirs);
}

// Setting a property that has the value already is no error, one that is being changed is: it is set again.
template <typename Value> void set(const char* path, const char* name, const char* type, Value value) {
    must(waitUntil([&] { return Bus().set(path, name, type, value); }), name);
}

} // namespace

BluetoothWorld::BluetoothWorld(Radios radios) {
    if (radios == Radios::Plugged) plugRadios();
    startService();
}

BluetoothWorld::~BluetoothWorld() {
    stopService();
    unplugRadios();
}

void BluetoothWorld::plugRadios() {
    m_radios = std::make_unique<Program>(std::vector<std::string>{"btvirt", "-l2"});
    must(waitUntil([] { return radioExists(0) && radioExists(1); }), "the emulated radios do not come up");
    if (m_service) waitForRadios();
}

// The kernel gives a radio two seconds for its first answer, and leaves it alone for good after that. On a busy
// computer an emulated one may be late.
void BluetoothWorld::waitForRadios() {
    for (int plugged = 1; !waitUntil(serviceHasBoth, kLongTimeout); ++plugged) {
        must(plugged < 4, "the Bluetooth service does not see the radios");
        unplugRadios();
        m_radios = std::make_unique<Program>(std::vector<std::string>{"btvirt", "-l2"});
    }
}

void BluetoothWorld::unplugRadios() {
    m_radios.reset();
    must(waitUntil([] { return !radioExists(0) && !radioExists(1); }), "the emulated radios do not go");
}

void BluetoothWorld::startService() {
    // Radios stay off until somebody switches them on: else it is by chance which of the two is on first, and used.
    constexpr const char* configuration = "/run/joyvane-test-bluetooth.conf";
    std::ofstream(configuration) << "[Policy]\nAutoEnable=false\n";
    m_service = std::make_unique<Program>(
        std::vector<std::string>{"/usr/libexec/bluetooth/bluetoothd", "-n", "-f", configuration});
    const auto answers = [] {
        sd_bus* bus = nullptr;
        ::sd_bus_open_system(&bus);
        const bool has = ::sd_bus_get_name_creds(bus, kService, 0, nullptr) >= 0;
        ::sd_bus_flush_close_unref(bus);
        return has;
    };
    must(waitUntil(answers, kStartTimeout), "the Bluetooth service does not start");
    if (m_radios) waitForRadios();
}

void BluetoothWorld::stopService() {
    if (!m_service) return;
    m_service->signal(SIGTERM);
    m_service->waitForEnd();
    m_service.reset();
}

void BluetoothWorld::prepare(Controller controller) {
    for (const char* radio : {kOurs, kTheirs}) {
        set(radio, "Powered", "b", 1);
        must(waitUntil([&] { return Bus().flag(radio, kAdapter, "Powered"); }), "a radio does not go on");
    }
    forget(); // a side that remembers refuses to pair anew
    // Before it is to be found, since whoever finds it looks at its class. On a busy computer the tool may give up.
    must(waitUntil([] {
             run({"btmgmt", "--timeout", "10", "--index", "1", "class", "5", "8"});
             return (Bus().number(kTheirs, kAdapter, "Class") & 0x1fff) == kGamepad;
         }),
         "the controller's class is not set");
    set(kTheirs, "Pairable", "b", 1);
    set(kTheirs, "DiscoverableTimeout", "u", 0U);
    set(kTheirs, "Discoverable", "b", controller == Controller::Hides ? 0 : 1);
}

bool BluetoothWorld::controllerIs(const std::string& property) const {
    return Bus().flag(kControllersDevice, "org.bluez.Device1", property.c_str());
}

bool BluetoothWorld::isSearching() const { return Bus().flag(kOurs, kAdapter, "Discovering"); }

size_t BluetoothWorld::devices() const {
    const auto tree = run({"busctl", "tree", "--list", kService}).output;
    size_t count = 0;
    const std::string prefix = std::string(kOurs) + "/dev_";
    for (auto at = tree.find(prefix); at != std::string::npos; at = tree.find(prefix, at + 1))
        if (tree.find('/', at + prefix.size()) > tree.find('\n', at)) ++count;
    return count;
}

void BluetoothWorld::forget() {
    const Bus bus;
    bus.removeDevice(kOurs, kControllersDevice);
    bus.removeDevice(kTheirs, kOurDevice);
}

} // namespace machine
