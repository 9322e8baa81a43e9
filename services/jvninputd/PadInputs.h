#pragma once

#include "services/jvninputd/Keymap.h"

#include <array>
#include <cstdint>

namespace jvninputd {

// Bit N stands for the input with native code N.
using InputSet = std::uint32_t;
constexpr InputSet bitOf(native::Code input) { return InputSet{1} << input; }

// Which inputs are down, from the keys that hold them down. Several keys may hold one input: it is up when the last of
// them is up. Of two opposite directions the one pressed last wins; the other comes back when that one is let go.
class PadInputs {
public:
    void press(native::Code input);
    // A release without a press does nothing.
    void release(native::Code input);

    // What is down, opposites settled.
    InputSet down() const;

private:
    // The four directions of one hat or stick come as two pairs of neighbouring codes.
    static constexpr std::array<native::Code, 6> firstOfPairs{native::dpadRight,       native::dpadUp,
                                                              native::leftStickRight,  native::leftStickUp,
                                                              native::rightStickRight, native::rightStickUp};

    std::array<unsigned, native::end> m_keysOn{};
    std::array<native::Code, firstOfPairs.size()> m_lastPressed{};
};

} // namespace jvninputd
