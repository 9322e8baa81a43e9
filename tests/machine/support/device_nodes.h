#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "tests/machine/support/wait_until.h"

// Input devices as the kernel and udev list them.
namespace machine {

// The event nodes ("/dev/input/event7") of the devices with that name that udev has dealt with.
std::vector<std::string> eventNodes(const std::string& name);

// Waits until there is one and gives the first; empty when none came in time.
std::string waitForEventNode(const std::string& name, std::chrono::milliseconds timeout = kLongTimeout);

// Waits until no device has that name; false when one was there all the time.
bool waitForNoEventNode(const std::string& name, std::chrono::milliseconds timeout = kLongTimeout);

// What udev says of the node, for example "ID_INPUT_KEYBOARD"; nothing when it does not say it.
std::optional<std::string> udevProperty(const std::string& node, const std::string& property);

} // namespace machine
