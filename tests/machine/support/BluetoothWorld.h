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

    enum class Radios {
        None,
        Classic, // a search lasts a moment
        DualMode // a search listens for low-energy devices first, for five seconds
    };
    explicit BluetoothWorld(Radios radios = Radios::Classic);
    ~BluetoothWorld();
    BluetoothWorld(const BluetoothWorld&) = delete;
    BluetoothWorld& operator=(const BluetoothWorld&) = delete;

    // The one that all tests of a program may share, since it takes seconds to come up; as the last test has left it.
    static BluetoothWorld& shared();

    // These are plugged in, and no others; those that are already stay.
    void plug(Radios radios);
    void startService(); // if it does not run
    enum class Stop { Orderly, Crash };
    void stopService(Stop stop = Stop::Orderly);

    // Both radios on, none knows the other, and the controller is to be found by a search, or not. One that wants a PIN
    // pairs in the old way, where both sides have to know the same.
    enum class Controller { Calls, CallsAndWantsAPin, Hides };
    void prepare(Controller controller = Controller::Calls);

    // As this computer's radio knows the controller: "Paired", "Trusted", "Connected".
    bool controllerIs(const std::string& property) const;
    bool isSearching() const;
    // How many devices this computer's radio knows of.
    size_t devices() const;
    // While the service is stopped: its next start finds no connection, and a controller that is not in pairing mode.
    void hide();
    // Both sides forget each other.
    void forget();

private:
    void startRadios();
    void stopRadios();
    void waitForRadios();
    void setPinWanted(bool wanted);

    Radios m_kind = Radios::None;
    std::unique_ptr<Program> m_radios;
    std::unique_ptr<Program> m_service;
    bool m_wantsPin = false;
};

} // namespace machine
