#include "kit/seat.h"

#include <string_view>
#include <sys/uio.h>
#include <unistd.h>

void seat::writeLogLine(std::string_view line) noexcept {
    constexpr std::string_view name = "joyvane: ";
    const auto part = [](std::string_view text) {
        return ::iovec{const_cast<char*>(text.data()), text.size()}; // which is only read
    };
    const ::iovec parts[] = {part(name), part(line), part("\n")};
    // One call, so that lines of several processes on one terminal do not mix. Nobody can be told when it fails.
    [[maybe_unused]] const auto written = ::writev(STDERR_FILENO, parts, 3);
}
