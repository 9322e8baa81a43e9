#pragma once

#include "services/input_protocol/messages.h"

#include <linux/input-event-codes.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace jvninputd {

// The native codes of the pad's inputs, as keymaps write them.
namespace native {
enum Code : std::uint8_t {
    none = 0,
    dpadRight = 1,
    dpadLeft,
    dpadUp,
    dpadDown,
    a,
    b,
    x,
    y,
    leftShoulder,
    rightShoulder,
    leftStickRight, // from here to rightTrigger the extended profile alone has them
    leftStickLeft,
    leftStickUp,
    leftStickDown,
    rightStickRight,
    rightStickLeft,
    rightStickUp,
    rightStickDown,
    leftTrigger,
    rightTrigger,
    pause,
    end
};
} // namespace native

// Which input each of the kernel's keys drives.
class Keymap {
public:
    // Bindings of keys or inputs that do not exist are left out and counted.
    static Keymap from(std::span<const input::KeyBinding> bindings);

    // native::none for a key that is not mapped, and for numbers that are no key.
    native::Code inputOf(unsigned kernelKey) const {
        return kernelKey < m_inputs.size() ? m_inputs[kernelKey] : native::none;
    }
    // Whether an input is bound that the plain profile does not have.
    bool needsExtended() const { return m_extended; }
    std::size_t leftOut() const { return m_bad; }

    bool operator==(const Keymap&) const = default;

private:
    std::array<native::Code, KEY_CNT> m_inputs{};
    bool m_extended = false;
    std::size_t m_bad = 0;
};

} // namespace jvninputd
