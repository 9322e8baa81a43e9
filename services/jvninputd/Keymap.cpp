#include "services/jvninputd/Keymap.h"

#include "system/input/hid_usage.h"

namespace jvninputd {

Keymap Keymap::from(std::span<const input::KeyBinding> bindings) {
    std::array<native::Code, 256> inputOfUsage{};
    Keymap keymap;
    for (const input::KeyBinding binding : bindings) {
        if (binding.usage == 0 || binding.usage >= inputOfUsage.size() || binding.nativeCode == native::none ||
            binding.nativeCode >= native::end)
            ++keymap.m_bad;
        else
            inputOfUsage[binding.usage] = static_cast<native::Code>(binding.nativeCode);
    }

    // From the kernel's keys to usages, as several keys can have one usage.
    for (unsigned key = 0; key < keymap.m_inputs.size(); ++key) {
        const long usage = seat::hidUsageForKernelKey(key);
        if (usage <= 0) continue;
        const native::Code input = inputOfUsage[static_cast<std::size_t>(usage)];
        keymap.m_inputs[key] = input;
        if (input >= native::leftStickRight && input <= native::rightTrigger) keymap.m_extended = true;
    }
    return keymap;
}

} // namespace jvninputd
