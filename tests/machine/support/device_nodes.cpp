#include "tests/machine/support/device_nodes.h"

#include <libudev.h>
#include <memory>
#include <sys/stat.h>

namespace machine {
namespace {

template <auto Unref> struct Unreferenced {
    template <typename T> void operator()(T* object) const { Unref(object); }
};
using Udev = std::unique_ptr<udev, Unreferenced<udev_unref>>;
using Device = std::unique_ptr<udev_device, Unreferenced<udev_device_unref>>;
using Enumeration = std::unique_ptr<udev_enumerate, Unreferenced<udev_enumerate_unref>>;

std::string textOrNothing(const char* text) { return text ? text : ""; }

} // namespace

std::vector<std::string> eventNodes(const std::string& name) {
    const Udev library(udev_new());
    const Enumeration found(udev_enumerate_new(library.get()));
    udev_enumerate_add_match_subsystem(found.get(), "input");
    udev_enumerate_add_match_sysname(found.get(), "event*");
    udev_enumerate_add_match_is_initialized(found.get());
    udev_enumerate_scan_devices(found.get());
    std::vector<std::string> nodes;
    for (auto* entry = udev_enumerate_get_list_entry(found.get()); entry; entry = udev_list_entry_get_next(entry)) {
        const Device device(udev_device_new_from_syspath(library.get(), udev_list_entry_get_name(entry)));
        if (!device) continue;                               // gone since
        auto* parent = udev_device_get_parent(device.get()); // the child's
        const auto node = textOrNothing(udev_device_get_devnode(device.get()));
        if (parent && !node.empty() && textOrNothing(udev_device_get_sysattr_value(parent, "name")) == name)
            nodes.push_back(node);
    }
    return nodes;
}

std::string waitForEventNode(const std::string& name, std::chrono::milliseconds timeout) {
    std::vector<std::string> nodes;
    waitUntil([&] { return !(nodes = eventNodes(name)).empty(); }, timeout);
    return nodes.empty() ? "" : nodes.front();
}

bool waitForNoEventNode(const std::string& name, std::chrono::milliseconds timeout) {
    return waitUntil([&] { return eventNodes(name).empty(); }, timeout);
}

std::optional<std::string> udevProperty(const std::string& node, const std::string& property) {
    struct stat file {};
    if (::stat(node.c_str(), &file) != 0) return std::nullopt;
    const Udev library(udev_new());
    const Device device(udev_device_new_from_devnum(library.get(), 'c', file.st_rdev));
    const char* value = device ? udev_device_get_property_value(device.get(), property.c_str()) : nullptr;
    return value ? std::optional<std::string>(value) : std::nullopt;
}

} // namespace machine
