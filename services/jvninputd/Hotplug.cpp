#include "services/jvninputd/Hotplug.h"

#include "services/common/log.h"
#include "services/jvninputd/lights.h"
#include "services/jvninputd/udev_properties.h"

#include <cerrno>
#include <cstring>
#include <libudev.h>
#include <string_view>
#include <sys/epoll.h>
#include <utility>

namespace jvninputd {

namespace {

struct EnumerateDeleter {
    void operator()(::udev_enumerate* list) const { ::udev_enumerate_unref(list); }
};

// Each device of the subsystem that udev has finished with, below the parent where one is given.
void forEach(::udev* context, const char* subsystem, ::udev_device* parent,
             const std::function<void(::udev_device&)>& each) {
    const std::unique_ptr<::udev_enumerate, EnumerateDeleter> list(::udev_enumerate_new(context));
    if (!list) return;
    ::udev_enumerate_add_match_subsystem(list.get(), subsystem);
    if (parent)
        ::udev_enumerate_add_match_parent(list.get(), parent);
    else
        ::udev_enumerate_add_match_is_initialized(list.get());
    ::udev_enumerate_scan_devices(list.get());
    for (::udev_list_entry* entry = ::udev_enumerate_get_list_entry(list.get()); entry;
         entry = ::udev_list_entry_get_next(entry)) {
        const UdevDevice device(::udev_device_new_from_syspath(context, ::udev_list_entry_get_name(entry)));
        if (device) each(*device);
    }
}

::udev_device* hidParent(::udev_device& device) {
    return ::udev_device_get_parent_with_subsystem_devtype(&device, "hid", nullptr);
}

} // namespace

void UdevDeleter::operator()(::udev* context) const { ::udev_unref(context); }
void UdevDeleter::operator()(::udev_device* device) const { ::udev_device_unref(device); }
void UdevDeleter::operator()(::udev_monitor* monitor) const { ::udev_monitor_unref(monitor); }

Hotplug::Hotplug(services::EventLoop& loop, Callbacks callbacks)
    : m_callbacks(std::move(callbacks)), m_udev(::udev_new()) {
    if (m_udev) m_monitor.reset(::udev_monitor_new_from_netlink(m_udev.get(), "udev"));
    if (!m_monitor) {
        services::log("listening to udev: %s", std::strerror(errno));
        return;
    }
    ::udev_monitor_filter_add_match_subsystem_devtype(m_monitor.get(), "input", nullptr);
    ::udev_monitor_filter_add_match_subsystem_devtype(m_monitor.get(), "leds", nullptr);
    if (const int result = ::udev_monitor_enable_receiving(m_monitor.get()); result < 0) {
        services::log("listening to udev: %s", std::strerror(-result));
        return;
    }
    m_readable = loop.watch(::udev_monitor_get_fd(m_monitor.get()), EPOLLIN, [this](std::uint32_t) {
        while (const UdevDevice device{::udev_monitor_receive_device(m_monitor.get())}) handle(*device);
    });
}

// What comes meanwhile is told of twice, which does no harm; nothing is missed, as the monitor listens already.
void Hotplug::enumerate() {
    if (m_udev) forEach(m_udev.get(), "input", nullptr, [this](::udev_device& device) { added(device); });
}

void Hotplug::handle(::udev_device& device) {
    const std::string_view action = text(::udev_device_get_action(&device));
    const std::string_view subsystem = text(::udev_device_get_subsystem(&device));
    if (subsystem == "leds") {
        if (action == "add") lightAdded(device);
    } else if (action == "remove") {
        m_callbacks.removed(std::string(text(::udev_device_get_sysname(&device))));
    } else if (action == "add" || action == "change") {
        added(device);
    }
}

void Hotplug::added(::udev_device& device) {
    const std::string name(text(::udev_device_get_sysname(&device)));
    const std::string node(text(::udev_device_get_devnode(&device)));
    if (!name.starts_with("event") || node.empty()) return;
    const DeviceKind kind =
        kindOf([&device](const char* property) { return ::udev_device_get_property_value(&device, property); });
    ::udev_device* parent = ::udev_device_get_parent_with_subsystem_devtype(&device, "input", nullptr);
    if (!parent || !kind.atOurSeat) return;
    const auto attribute = [parent](const char* file) { return ::udev_device_get_sysattr_value(parent, file); };
    const DeviceIdentity identity = identityOf(attribute);
    if (identity.ours) return;
    if (kind.keyboard) m_callbacks.keyboardAdded(name, {identity.name, node});
    if (!kind.joystick) return;

    ControllerFound found{identity.address, identity.bus, {}};
    if (::udev_device* hid = hidParent(device))
        if (const std::string folder(text(::udev_device_get_syspath(hid))); hasLight(folder))
            found.lightFolder = folder;
    if (found.address || !found.lightFolder.empty()) m_callbacks.controllerAdded(name, found);
}

// A driver may register its lights after the pad: then the pad is told of again.
void Hotplug::lightAdded(::udev_device& light) {
    ::udev_device* hid = hidParent(light);
    if (!hid) return;
    forEach(m_udev.get(), "input", hid, [this](::udev_device& device) {
        if (::udev_device_get_is_initialized(&device)) added(device);
    });
}

} // namespace jvninputd
