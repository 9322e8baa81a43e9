#include "kit/seat.h"

#include <cstdio>

void seat::writeLogLine(std::string_view line) noexcept {
    std::fprintf(stderr, "joyvane: %.*s\n", static_cast<int>(line.size()), line.data());
}
