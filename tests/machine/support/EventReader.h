#pragma once

#include <chrono>
#include <linux/input.h>
#include <optional>
#include <string>

#include "tests/machine/support/wait_until.h"

namespace machine {

// A program that listens to an input device, as a desktop or a game does. What cannot be opened throws
// std::system_error.
class EventReader {
public:
    explicit EventReader(const std::string& node);
    ~EventReader();
    EventReader(EventReader&& other) noexcept;
    EventReader& operator=(EventReader&&) = delete;

    // Waits for the device with that name first.
    static EventReader ofDevice(const std::string& name, std::chrono::milliseconds timeout = kLongTimeout);

    // The next event but the ends of reports; nothing when none came in time, or the device is gone.
    std::optional<input_event> next(std::chrono::milliseconds timeout = kLongTimeout);

    // Reads until this event comes; false when it did not come in time.
    bool waitFor(uint16_t type, uint16_t code, int32_t value, std::chrono::milliseconds timeout = kLongTimeout);

    // The next event as "EV_KEY 30 1", for one comparison that says everything; "nothing" when none came in time.
    std::string nextText(std::chrono::milliseconds timeout = kLongTimeout);

    bool gone() const;

    // The kernel's present state, whatever has been read.
    bool isDown(uint16_t key) const;
    int keysDown() const;
    int32_t axis(uint16_t code) const;
    bool isLit(uint16_t lamp) const;

    // False when somebody else has grabbed the device. A grab of ours ends with release() or with the reader.
    bool grab();
    void release();
    // Whether somebody else has grabbed it at this moment.
    bool grabbedByOthers();

    int descriptor() const { return m_device; }

private:
    int m_device = -1;
};

} // namespace machine
