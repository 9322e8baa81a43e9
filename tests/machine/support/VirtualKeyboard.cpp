#include "tests/machine/support/VirtualKeyboard.h"

#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <filesystem>
#include <linux/uinput.h>
#include <sys/ioctl.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "tests/machine/support/device_nodes.h"

namespace machine {
namespace {

void must(int result, const char* what) {
    if (result < 0) throw std::system_error(errno, std::generic_category(), what);
}

void declare(int device, unsigned long kind, int type, const std::vector<uint16_t>& codes) {
    if (codes.empty()) return;
    must(::ioctl(device, UI_SET_EVBIT, type), "UI_SET_EVBIT");
    for (const auto code : codes) must(::ioctl(device, kind, static_cast<int>(code)), "a code of a virtual device");
}

// The event node of the device that the kernel calls so ("input12"), which was made after that moment; udev's part is
// waited for. What udev knew of an earlier device of the same number may still be there.
std::string nodeOf(const std::string& kernelName, std::chrono::microseconds madeAfter) {
    std::string node;
    const auto isKnown = [madeAfter](const std::string& path) {
        const auto time = udevProperty(path, "USEC_INITIALIZED");
        return time && std::chrono::microseconds(std::stoll(*time)) >= madeAfter && udevProperty(path, "ID_INPUT");
    };
    const auto found = [&] {
        std::error_code ignored;
        for (const auto& entry : std::filesystem::directory_iterator("/sys/class/input/" + kernelName, ignored)) {
            const auto file = entry.path().filename().string();
            if (file.starts_with("event")) node = "/dev/input/" + file;
        }
        return !node.empty() && isKnown(node);
    };
    if (!waitUntil(found)) throw std::system_error(ETIMEDOUT, std::generic_category(), "a virtual device's node");
    return node;
}

} // namespace

std::vector<uint16_t> DeviceDescription::everyKeyboardKey() {
    std::vector<uint16_t> keys;
    for (uint16_t key = KEY_ESC; key < BTN_MISC; ++key) keys.push_back(key);
    return keys;
}

VirtualKeyboard::VirtualKeyboard(const DeviceDescription& description)
    : m_device(::open("/dev/uinput", O_RDWR | O_CLOEXEC | O_NONBLOCK)) {
    must(m_device, "/dev/uinput");
    declare(m_device, UI_SET_KEYBIT, EV_KEY, description.keys);
    declare(m_device, UI_SET_RELBIT, EV_REL, description.relativeAxes);
    declare(m_device, UI_SET_MSCBIT, EV_MSC, description.miscellaneous);
    declare(m_device, UI_SET_LEDBIT, EV_LED, description.lamps);
    if (description.repeats) must(::ioctl(m_device, UI_SET_EVBIT, EV_REP), "UI_SET_EVBIT");

    uinput_setup setup{};
    setup.id = description.id;
    description.name.copy(setup.name, sizeof setup.name - 1);
    must(::ioctl(m_device, UI_DEV_SETUP, &setup), "UI_DEV_SETUP");
    // udev's clock.
    const auto now =
        std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now().time_since_epoch());
    must(::ioctl(m_device, UI_DEV_CREATE), "UI_DEV_CREATE");
    char kernelName[64] = {};
    must(::ioctl(m_device, UI_GET_SYSNAME(sizeof kernelName), kernelName), "UI_GET_SYSNAME");
    m_node = nodeOf(kernelName, now);
}

VirtualKeyboard::VirtualKeyboard(VirtualKeyboard&& other) noexcept
    : m_device(std::exchange(other.m_device, -1)), m_node(std::move(other.m_node)) {}

VirtualKeyboard::~VirtualKeyboard() { unplug(); }

void VirtualKeyboard::unplug() {
    if (m_device >= 0) ::close(std::exchange(m_device, -1));
}

void VirtualKeyboard::tap(uint16_t key) {
    press(key);
    release(key);
}

void VirtualKeyboard::send(uint16_t type, uint16_t code, int32_t value) {
    // In one writing, as a driver reports.
    input_event frame[2]{};
    frame[0].type = type;
    frame[0].code = code;
    frame[0].value = value;
    frame[1].type = EV_SYN;
    if (::write(m_device, frame, sizeof frame) != static_cast<ssize_t>(sizeof frame))
        throw std::system_error(errno, std::generic_category(), "write to /dev/uinput");
}

void VirtualKeyboard::sendPart(uint16_t type, uint16_t code, int32_t value) {
    input_event event{};
    event.type = type;
    event.code = code;
    event.value = value;
    if (::write(m_device, &event, sizeof event) != static_cast<ssize_t>(sizeof event))
        throw std::system_error(errno, std::generic_category(), "write to /dev/uinput");
}

} // namespace machine
