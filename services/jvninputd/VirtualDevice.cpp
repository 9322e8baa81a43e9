#include "services/jvninputd/VirtualDevice.h"

#include "services/common/log.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <libevdev/libevdev-uinput.h>
#include <linux/input.h>
#include <unistd.h>

namespace jvninputd {

namespace {

// Types that a stand-in shows. Repeats (EV_REP) are left out, or the kernel would add its own to those passed on.
constexpr std::array<unsigned, 5> standInTypes{EV_KEY, EV_REL, EV_ABS, EV_SW, EV_LED};

Evdev newDescription(const char* name) {
    Evdev description(::libevdev_new());
    ::libevdev_set_name(description.get(), name);
    ::libevdev_set_id_bustype(description.get(), BUS_VIRTUAL);
    ::libevdev_set_id_version(description.get(), 1);
    return description;
}

} // namespace

void EvdevDeleter::operator()(::libevdev* device) const { ::libevdev_free(device); }
void EvdevDeleter::operator()(::libevdev_uinput* device) const { ::libevdev_uinput_destroy(device); }

Evdev describePad(input::Profile profile) {
    Evdev description = newDescription(padName);
    for (const std::uint16_t button : padButtons(profile))
        ::libevdev_enable_event_code(description.get(), EV_KEY, button, nullptr);
    for (const PadAxis& axis : padAxes(profile)) {
        ::input_absinfo range{};
        range.minimum = axis.minimum;
        range.maximum = axis.maximum;
        ::libevdev_enable_event_code(description.get(), EV_ABS, axis.code, &range);
    }
    return description;
}

Evdev describeStandIn(const ::libevdev& keyboard) {
    Evdev description = newDescription(standInName);
    for (const unsigned type : standInTypes) {
        const int last = ::libevdev_event_type_get_max(type);
        for (unsigned code = 0; static_cast<int>(code) <= last; ++code) {
            if (!::libevdev_has_event_code(&keyboard, type, code)) continue;
            const ::input_absinfo* range = type == EV_ABS ? ::libevdev_get_abs_info(&keyboard, code) : nullptr;
            ::libevdev_enable_event_code(description.get(), type, code, range);
        }
    }
    return description;
}

std::unique_ptr<VirtualDevice> VirtualDevice::create(::libevdev& description) {
    ::libevdev_uinput* device = nullptr;
    const int result = ::libevdev_uinput_create_from_device(&description, LIBEVDEV_UINPUT_OPEN_MANAGED, &device);
    if (result < 0) {
        services::log("making the device \"%s\": %s", ::libevdev_get_name(&description), std::strerror(-result));
        return nullptr;
    }
    const int descriptor = ::libevdev_uinput_get_fd(device);
    ::fcntl(descriptor, F_SETFL, ::fcntl(descriptor, F_GETFL) | O_NONBLOCK);
    return std::unique_ptr<VirtualDevice>(new VirtualDevice(device));
}

void VirtualDevice::write(std::span<const Event> events) {
    // A whole frame in one call, so that no reader is woken for half of it.
    constexpr std::size_t most = 64;
    std::array<::input_event, most> frame;
    std::size_t count = 0;
    const auto send = [&] {
        if (::write(descriptor(), frame.data(), count * sizeof frame[0]) < 0)
            services::log("writing to a virtual device: %s", std::strerror(errno));
        count = 0;
    };
    for (const Event event : events) {
        if (count == most) send();
        frame[count] = {};
        frame[count].type = event.type;
        frame[count].code = event.code;
        frame[count++].value = event.value;
    }
    if (count == most) send();
    frame[count] = {};
    frame[count].type = EV_SYN;
    frame[count++].code = SYN_REPORT;
    send();
}

int VirtualDevice::descriptor() const { return ::libevdev_uinput_get_fd(m_device.get()); }

std::string VirtualDevice::node() const {
    const char* path = ::libevdev_uinput_get_devnode(m_device.get());
    return path ? path : "";
}

std::vector<std::string> VirtualDevice::nodeNames() const {
    std::vector<std::string> names;
    const char* folder = ::libevdev_uinput_get_syspath(m_device.get());
    const std::unique_ptr<::DIR, int (*)(::DIR*)> entries(folder ? ::opendir(folder) : nullptr, ::closedir);
    while (const ::dirent* entry = entries ? ::readdir(entries.get()) : nullptr) {
        const std::string name = entry->d_name;
        if (name.starts_with("event") || name.starts_with("js")) names.push_back(name);
    }
    return names;
}

} // namespace jvninputd
