#pragma once

#include <cstdint>
#include <linux/input.h>
#include <string>
#include <vector>

namespace machine {

// What a virtual device says that it is and has.
struct DeviceDescription {
    std::string name = "Test Keyboard";
    input_id id{BUS_USB, 0x1209, 0x0001, 1};
    std::vector<uint16_t> keys = everyKeyboardKey();
    std::vector<uint16_t> relativeAxes = {};
    std::vector<uint16_t> miscellaneous = {};
    std::vector<uint16_t> lamps = {};
    bool repeats = true;

    // A keyboard as most people have one. To udev each lamp is one more device that comes, changes twice and goes:
    // three times the keyboard's own work, and so they are there for whom lamps or the whole system matter.
    static DeviceDescription withLamps() { return {.lamps = {LED_NUML, LED_CAPSL, LED_SCROLLL}}; }

    static std::vector<uint16_t> everyKeyboardKey();
};

// A keyboard, or any other device with keys and wheels, that the kernel takes for a real one. What cannot be done
// throws std::system_error. Plugged in from the constructor until unplug() or the end of the scope.
class VirtualKeyboard {
public:
    explicit VirtualKeyboard(const DeviceDescription& description = {});
    ~VirtualKeyboard();
    VirtualKeyboard(VirtualKeyboard&& other) noexcept;
    VirtualKeyboard& operator=(VirtualKeyboard&&) = delete;

    void press(uint16_t key) { send(EV_KEY, key, 1); }
    void release(uint16_t key) { send(EV_KEY, key, 0); }
    void tap(uint16_t key);

    // One event with its report's end.
    void send(uint16_t type, uint16_t code, int32_t value);
    // One event of a report that goes on.
    void sendPart(uint16_t type, uint16_t code, int32_t value);

    // The lamps, for whoever reads what is written to the device's node: the next event of type EV_LED.
    int descriptor() const { return m_device; }

    void unplug();

    // "/dev/input/event7", once udev has dealt with it.
    const std::string& node() const { return m_node; }

private:
    int m_device = -1;
    std::string m_node;
};

} // namespace machine
