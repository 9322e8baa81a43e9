#include "tests/machine/support/BluetoothWorld.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string_view>
#include <systemd/sd-bus.h>

#include "tests/machine/support/radio_control.h"

namespace machine {
namespace {

// Starting the service takes seconds under emulation.
constexpr auto kStartTimeout = 3 * kLongTimeout;
constexpr const char* kService = "org.bluez";
constexpr const char* kAdapter = "org.bluez.Adapter1";
constexpr const char* kDevice = "org.bluez.Device1";
constexpr const char* kOurs = "/org/bluez/hci0";
constexpr const char* kTheirs = "/org/bluez/hci1";
constexpr const char* kControllersDevice = "/org/bluez/hci0/dev_00_AA_01_01_00_01";
constexpr uint32_t kGamepad = 0x0508; // major class: peripheral; minor class: gamepad
constexpr const char* kOurDevice = "/org/bluez/hci1/dev_00_AA_01_00_00_00";
constexpr const char* kOurAddress = "00:AA:01:00:00:00";
constexpr uint16_t kOurRadio = 0;
constexpr uint16_t kControllersRadio = 1;

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
    // Empty, or why not.
    template <typename Value> std::string set(const char* path, const char* name, const char* type, Value value) const {
        sd_bus_error error{};
        const int result = ::sd_bus_set_property(m_bus, kService, path, kAdapter, name, &error, type, value);
        const std::string why = error.message ? error.message : "no answer";
        ::sd_bus_error_free(&error);
        return result >= 0 ? "" : why;
    }
    void removeDevice(const char* adapter, const char* device) const {
        ::sd_bus_call_method(m_bus, kService, adapter, kAdapter, "RemoveDevice", nullptr, nullptr, "o", device);
    }
    // The paths of all that the service has.
    std::vector<std::string> objects() const {
        std::vector<std::string> found;
        ::sd_bus_message* reply = nullptr;
        ::sd_bus_call_method(m_bus, kService, "/", "org.freedesktop.DBus.ObjectManager", "GetManagedObjects", nullptr,
                             &reply, nullptr);
        if (reply) ::sd_bus_message_enter_container(reply, 'a', "{oa{sa{sv}}}");
        while (reply && ::sd_bus_message_enter_container(reply, 'e', "oa{sa{sv}}") > 0) {
            const char* path = nullptr;
            ::sd_bus_message_read(reply, "o", &path);
            if (path) found.emplace_back(path);
            ::sd_bus_message_skip(reply, "a{sa{sv}}");
            ::sd_bus_message_exit_container(reply);
        }
        ::sd_bus_message_unref(reply);
        return found;
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
    std::string why;
    if (waitUntil([&] { return (why = Bus().set(path, name, type, value)).empty(); })) return;
    throw std::runtime_error(std::string(name) + " of " + path + ": " + why);
}

} // namespace

BluetoothWorld::BluetoothWorld(Radios radios) {
    plug(radios);
    startService();
}

BluetoothWorld::~BluetoothWorld() {
    stopService();
    stopRadios();
}

BluetoothWorld& BluetoothWorld::shared() {
    static BluetoothWorld world;
    return world;
}

void BluetoothWorld::plug(Radios radios) {
    if (radios == m_kind) return;
    stopRadios();
    m_kind = radios;
    if (radios == Radios::None) return;
    startRadios();
    must(waitUntil([] { return radioExists(0) && radioExists(1); }), "the emulated radios do not come up");
    if (m_service) waitForRadios();
}

void BluetoothWorld::startRadios() {
    std::vector<std::string> command{"btvirt", "-l2"};
    if (m_kind == Radios::Classic) command.emplace_back("-B");
    m_radios = std::make_unique<Program>(command);
    m_wantsPin = false;
}

void BluetoothWorld::stopRadios() {
    m_radios.reset();
    must(waitUntil([] { return !radioExists(0) && !radioExists(1); }), "the emulated radios do not go");
}

// The kernel gives a radio two seconds for its first answer, and leaves it alone for good after that. On a busy
// computer an emulated one may be late.
void BluetoothWorld::waitForRadios() {
    for (int plugged = 1; !waitUntil(serviceHasBoth, kLongTimeout); ++plugged) {
        must(plugged < 4, "the Bluetooth service does not see the radios");
        stopRadios();
        startRadios();
    }
}

void BluetoothWorld::startService() {
    if (m_service) return;
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

void BluetoothWorld::stopService(Stop stop) {
    if (!m_service) return;
    m_service->signal(stop == Stop::Crash ? SIGKILL : SIGTERM);
    m_service->waitForEnd();
    m_service.reset();
}

void BluetoothWorld::prepare(Controller controller) {
    for (const char* radio : {kOurs, kTheirs}) {
        set(radio, "Powered", "b", 1);
        must(waitUntil([&] { return Bus().flag(radio, kAdapter, "Powered"); }), "a radio does not go on");
    }
    forget(); // a side that remembers refuses to pair anew
    setPinWanted(controller == Controller::CallsAndWantsAPin);
    // Before it is to be found, since whoever finds it looks at its class.
    must(setClass(kControllersRadio, kGamepad >> 8, kGamepad & 0xff) &&
             waitUntil([] { return (Bus().number(kTheirs, kAdapter, "Class") & 0x1fff) == kGamepad; }),
         "the controller's class is not set");
    set(kTheirs, "Pairable", "b", 1);
    set(kTheirs, "DiscoverableTimeout", "u", 0U);
    set(kTheirs, "Discoverable", "b", controller == Controller::Hides ? 0 : 1);
}

void BluetoothWorld::setPinWanted(bool wanted) {
    if (wanted == m_wantsPin) return;
    m_wantsPin = wanted;
    must(setSimplePairing(kControllersRadio, !wanted), "the controller's way of pairing is not set");
}

bool BluetoothWorld::controllerIs(const std::string& property) const {
    return Bus().flag(kControllersDevice, kDevice, property.c_str());
}

bool BluetoothWorld::isSearching() const { return Bus().flag(kOurs, kAdapter, "Discovering"); }

size_t BluetoothWorld::devices() const {
    const std::string prefix = std::string(kOurs) + "/dev_";
    const auto isDevice = [&prefix](std::string_view path) {
        return path.starts_with(prefix) && path.find('/', prefix.size()) == std::string_view::npos;
    };
    const auto all = Bus().objects();
    return static_cast<size_t>(std::ranges::count_if(all, isDevice));
}

void BluetoothWorld::hide() {
    must(!m_service, "the service would make the controller discoverable again");
    hangUp(kOurRadio, kController); // it may have none
    must(setDiscoverable(kControllersRadio, false), "the controller does not hide");
    std::filesystem::remove(std::string("/var/lib/bluetooth/") + kController + "/settings");
}

void BluetoothWorld::forget() {
    // The service alone would let the connection be for two seconds more.
    if (controllerIs("Connected") && hangUp(kControllersRadio, kOurAddress))
        waitUntil([this] { return !controllerIs("Connected") && !Bus().flag(kOurDevice, kDevice, "Connected"); });
    const Bus bus;
    bus.removeDevice(kOurs, kControllersDevice);
    bus.removeDevice(kTheirs, kOurDevice);
}

} // namespace machine
