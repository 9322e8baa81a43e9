#include "tests/machine/support/LitController.h"

#include <cctype>
#include <linux/input.h>
#include <string>
#include <utility>

namespace machine {
namespace {

constexpr uint16_t kMaker = 0x054c;

// A gamepad with sticks, hat, buttons and triggers in one input report, then vendor-defined reports.
Report descriptor(uint8_t inputReport, std::initializer_list<std::pair<uint8_t, uint8_t>> outputs,
                  std::initializer_list<std::pair<uint8_t, uint8_t>> features) {
    Report report{
        0x05, 0x01, 0x09, 0x05, 0xA1, 0x01, 0x85, inputReport, // a gamepad; the input report
        0x09, 0x30, 0x09, 0x31, 0x09, 0x32, 0x09, 0x35,        // both sticks
        0x15, 0x00, 0x26, 0xFF, 0x00, 0x75, 0x08, 0x95,        0x04, 0x81, 0x02, 0x09, 0x39, 0x15, 0x00,
        0x25, 0x07, 0x35, 0x00, 0x46, 0x3B, 0x01, // the hat
        0x65, 0x14, 0x75, 0x04, 0x95, 0x01, 0x81, 0x42,        0x65, 0x00, 0x05, 0x09, 0x19, 0x01, 0x29,
        0x0E, 0x15, 0x00, 0x25, 0x01, // 14 buttons
        0x75, 0x01, 0x95, 0x0E, 0x81, 0x02, 0x06, 0x00,        0xFF, 0x09, 0x20, 0x75, 0x06, 0x95, 0x01,
        0x15, 0x00, 0x25, 0x7F, 0x81, 0x02,                                                              // a counter
        0x05, 0x01, 0x09, 0x33, 0x09, 0x34, 0x15, 0x00,        0x26, 0xFF, 0x00,                         // the triggers
        0x75, 0x08, 0x95, 0x02, 0x81, 0x02, 0x06, 0x00,        0xFF, 0x09, 0x21, 0x95, 0x36, 0x81, 0x02, // touches and
                                                                                                         // motion
    };
    uint8_t usage = 0x22;
    const auto add = [&](std::pair<uint8_t, uint8_t> numberAndBytes, uint8_t kind) {
        report.insert(report.end(),
                      {0x85, numberAndBytes.first, 0x09, usage++, 0x95, numberAndBytes.second, kind, 0x02});
    };
    for (const auto& output : outputs) add(output, 0x91);
    for (const auto& feature : features) add(feature, 0xB1);
    report.push_back(0xC0);
    return report;
}

// What the driver appends to a Bluetooth report and looks for at the end of one: little-endian, of a byte that says
// which way the report goes and the report.
void appendChecksum(Report& report, uint8_t direction) {
    uint32_t sum = 0xFFFFFFFF;
    const auto add = [&sum](uint8_t byte) {
        sum ^= byte;
        for (int bit = 0; bit < 8; ++bit) sum = (sum >> 1U) ^ ((sum & 1U) != 0 ? 0xEDB88320U : 0U);
    };
    add(direction);
    for (const auto byte : report) add(byte);
    sum = ~sum;
    for (unsigned shift = 0; shift < 32; shift += 8) report.push_back(static_cast<uint8_t>(sum >> shift));
}

Report feature(uint8_t number, size_t size) {
    Report report(size);
    report[0] = number;
    return report;
}

// Ranges that no driver divides by zero with: gyroscopes at 7, accelerometers after them, 16 bits each.
Report calibration(uint8_t number, size_t size) {
    Report report = feature(number, size);
    const auto put = [&report](size_t at, int value) {
        report[at] = static_cast<uint8_t>(value & 0xFF);
        report[at + 1] = static_cast<uint8_t>(value >> 8U & 0xFF);
    };
    for (size_t axis = 0; axis < 3; ++axis) {
        put(7 + 4 * axis, 10000);
        put(9 + 4 * axis, -10000);
        put(23 + 4 * axis, 8192);
        put(25 + 4 * axis, -8192);
    }
    put(19, 500);
    put(21, 500);
    return report;
}

// The six bytes of an address, last one first, as both controllers tell it.
void putAddress(Report& report, size_t at, const std::string& address) {
    for (size_t byte = 0; byte < 6; ++byte)
        report[at + 5 - byte] = static_cast<uint8_t>(std::stoi(address.substr(3 * byte, 2), nullptr, 16));
}

// As the Bluetooth service gives the kernel an address.
std::string inLowerCase(std::string text) {
    for (auto& letter : text) letter = static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
    return text;
}

UhidDescription dualShock4(Wire wire, const std::string& address) {
    auto pairing = feature(0x12, 16);
    putAddress(pairing, 1, address);
    auto own = feature(0x81, 7);
    putAddress(own, 1, address);
    auto version = feature(0xA3, 49);
    version[36] = 0x81;
    version[42] = 1;
    UhidDescription description{
        "Wireless Controller", BUS_USB, kMaker, 0x05c4, "", {}, {{0x12, pairing}, {0x81, own}, {0xA3, version}}};
    if (wire == Wire::Usb) {
        description.features[0x02] = calibration(0x02, 37);
        description.descriptor = descriptor(0x01, {{0x05, 31}}, {{0x02, 36}, {0x12, 15}, {0x81, 6}, {0xA3, 48}});
    } else {
        auto checked = calibration(0x05, 37);
        appendChecksum(checked, 0xA3);
        description.bus = BUS_BLUETOOTH;
        description.unique = inLowerCase(address);
        description.features[0x05] = checked;
        description.descriptor = descriptor(0x01, {{0x11, 77}}, {{0x05, 40}, {0x12, 15}, {0x81, 6}, {0xA3, 48}});
    }
    return description;
}

UhidDescription dualSense(Wire wire, const std::string& address) {
    auto pairing = feature(0x09, wire == Wire::Usb ? 20 : 16);
    putAddress(pairing, 1, address);
    std::map<uint8_t, Report> features{{0x05, calibration(0x05, wire == Wire::Usb ? 41 : 37)},
                                       {0x09, pairing},
                                       {0x20, feature(0x20, wire == Wire::Usb ? 64 : 60)}};
    if (wire == Wire::Bluetooth)
        for (auto& [number, report] : features) appendChecksum(report, 0xA3);
    UhidDescription description{"Wireless Controller", BUS_USB, kMaker, 0x0ce6, "", {}, std::move(features)};
    description.descriptor = descriptor(0x01, {{0x02, 62}}, {{0x05, 40}, {0x09, 19}, {0x20, 63}});
    if (wire == Wire::Bluetooth) {
        description.bus = BUS_BLUETOOTH;
        description.unique = inLowerCase(address);
        description.descriptor = descriptor(0x01, {{0x31, 77}}, {{0x05, 40}, {0x09, 19}, {0x20, 63}});
    }
    return description;
}

} // namespace

LitController::LitController(std::string name, std::string address, const LightPlace& place,
                             UhidDescription description)
    : m_name(std::move(name)), m_address(std::move(address)), m_place(place), m_device(std::move(description)) {}

std::optional<Light> LitController::lightOf(const Report& report) const {
    if (report.size() < m_place.red + 3 || report[0] != m_place.number) return std::nullopt;
    if ((report[m_place.flags] & m_place.mask) != m_place.mask) return std::nullopt;
    return Light{report[m_place.red], report[m_place.red + 1], report[m_place.red + 2]};
}

std::optional<Light> LitController::light() const {
    std::optional<Light> last;
    for (const auto& report : m_device.outputs())
        if (const auto light = lightOf(report)) last = light;
    return last;
}

size_t LitController::lightReports() const {
    size_t count = 0;
    for (const auto& report : m_device.outputs())
        if (lightOf(report)) ++count;
    return count;
}

bool LitController::waitForLight(const Light& light, size_t seen, std::chrono::milliseconds timeout) const {
    const auto sets = [&](const Report& report) {
        const auto found = lightOf(report);
        if (!found) return false;
        if (seen > 0) {
            --seen;
            return false;
        }
        return *found == light;
    };
    return m_device.waitForOutput(sets, 0, timeout).has_value();
}

DualShock4::DualShock4(Wire wire, const std::string& address)
    : LitController("Wireless Controller", address,
                    wire == Wire::Usb ? LightPlace{0x05, 1, 0x02, 6} : LightPlace{0x11, 3, 0x02, 8},
                    dualShock4(wire, address)) {}

DualSense::DualSense(Wire wire, const std::string& address)
    : LitController("Wireless Controller", address,
                    wire == Wire::Usb ? LightPlace{0x02, 2, 0x04, 45} : LightPlace{0x31, 4, 0x04, 47},
                    dualSense(wire, address)) {}

} // namespace machine
