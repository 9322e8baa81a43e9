#pragma once

#include <memory>
#include <string>
#include <vector>

#include "tests/machine/support/Program.h"

namespace machine {

// The system's Bluetooth service with two emulated radios: hci0 is this computer's, hci1 plays a controller in pairing
// mode, with the class of device of a gamepad. What does not come up throws std::runtime_error.
class BluetoothWorld {
public:
    static constexpr const char* kController = "00:AA:01:01:00:01";

    enum class Radios { Plugged, None };
    explicit BluetoothWorld(Radios radios = Radios::Plugged);
    ~BluetoothWorld();
    BluetoothWorld(const BluetoothWorld&) = delete;
    BluetoothWorld& operator=(const BluetoothWorld&) = delete;

    void plugRadios();
    void unplugRadios(); // both, at once
    void startService();
    void stopService();

    // Both radios on, none knows the other, and the controller is to be found by a search, or not.
    enum class Controller { Calls, Hides };
    void prepare(Controller controller = Controller::Calls);

    // As this computer's radio knows the controller: "Paired", "Trusted", "Connected".
    bool controllerIs(const std::string& property) const;
    bool isSearching() const;
    // How many devices this computer's radio knows of.
    size_t devices() const;
    // Both sides forget each other.
    void forget();

private:
    void waitForRadios();

    std::unique_ptr<Program> m_radios;
    std::unique_ptr<Program> m_service;
};

} // namespace machine
