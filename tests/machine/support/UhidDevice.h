#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <linux/uhid.h>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "tests/machine/support/wait_until.h"

namespace machine {

using Report = std::vector<uint8_t>;

// What the kernel is told of a device that somebody plugs in or that connects by Bluetooth.
struct UhidDescription {
    std::string name;
    uint16_t bus; // BUS_USB or BUS_BLUETOOTH
    uint16_t vendor;
    uint16_t product;
    std::string unique; // a Bluetooth device's address
    Report descriptor;
    // Answers to requests for feature reports, by number; each begins with its number. Others are refused.
    std::map<uint8_t, Report> features;
};

// A device at the other end of /dev/uhid: answers the kernel's driver on a thread of its own and keeps the output
// reports that it sends. Connected from the constructor to disconnect() or the end of the scope. What cannot be done
// throws std::system_error.
class UhidDevice {
public:
    explicit UhidDevice(UhidDescription description);
    ~UhidDevice();
    UhidDevice(const UhidDevice&) = delete;
    UhidDevice& operator=(const UhidDevice&) = delete;

    void disconnect();

    void sendInput(const Report& report);

    std::vector<Report> outputs() const;

    // The first output report after the first `seen` ones for which the question is answered with yes; nothing when
    // none came in time.
    std::optional<Report> waitForOutput(const std::function<bool(const Report&)>& wanted, size_t seen = 0,
                                        std::chrono::milliseconds timeout = kLongTimeout) const;

private:
    void answerUntilStopped();
    void handle(const uhid_event& event);
    void send(const uhid_event& event) const;

    UhidDescription m_description;
    int m_device = -1;
    int m_stop = -1; // an event descriptor
    std::thread m_thread;
    mutable std::mutex m_mutex;
    mutable std::condition_variable m_changed;
    std::vector<Report> m_outputs;
};

} // namespace machine
