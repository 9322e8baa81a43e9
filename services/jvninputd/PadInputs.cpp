#include "services/jvninputd/PadInputs.h"

namespace jvninputd {

void PadInputs::press(native::Code input) {
    ++m_keysOn[input];
    for (std::size_t pair = 0; pair < firstOfPairs.size(); ++pair)
        if (input == firstOfPairs[pair] || input == firstOfPairs[pair] + 1) m_lastPressed[pair] = input;
}

void PadInputs::release(native::Code input) {
    if (m_keysOn[input] > 0) --m_keysOn[input];
}

InputSet PadInputs::down() const {
    InputSet set = 0;
    for (unsigned input = native::dpadRight; input < native::end; ++input)
        if (m_keysOn[input] > 0) set |= bitOf(static_cast<native::Code>(input));

    for (std::size_t pair = 0; pair < firstOfPairs.size(); ++pair) {
        const InputSet both = bitOf(firstOfPairs[pair]) | bitOf(firstOfPairs[pair]) << 1;
        if ((set & both) == both) set = (set & ~both) | bitOf(m_lastPressed[pair]);
    }
    return set;
}

} // namespace jvninputd
