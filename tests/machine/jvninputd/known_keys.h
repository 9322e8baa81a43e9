#pragma once

#include "tests/machine/jvninputd/InputClient.h"

#include <cstdint>
#include <functional>
#include <vector>

namespace machine {

// A key that a keymap can bind, by the kernel's number and by its HID usage. Some usages have several keys.
struct KnownKey {
    std::uint16_t key;
    int usage;
};

std::vector<KnownKey> everyKnownKey();

// Each usage once, with the code that is given for it.
Bindings bindingsOf(const std::vector<KnownKey>& keys, const std::function<int(const KnownKey&)>& codeOf);

// As many taps as fit into the queue of a reader of the pad who is late.
inline constexpr std::size_t keysAtATime = 6;

} // namespace machine
