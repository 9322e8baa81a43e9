#pragma once

#include <chrono>
#include <functional>

namespace machine {

// Long enough for a busy computer that emulates another one; nothing that works takes it.
constexpr std::chrono::seconds kLongTimeout{20};

// Asks until the answer is yes; false when it was no for that long. For facts that nothing announces.
bool waitUntil(const std::function<bool()>& fact, std::chrono::milliseconds timeout = kLongTimeout);

} // namespace machine
