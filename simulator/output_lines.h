#pragma once

namespace simulator {

// One line to the standard output, at once. A reader that does not keep up loses lines, and never holds us up.
[[gnu::format(printf, 1, 2)]] void say(const char* format, ...);

} // namespace simulator
