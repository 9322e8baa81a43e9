#include "kit/seat.h"

#include "system/log/LineOutput.h"

void seat::writeLogLine(std::string_view line) noexcept {
    static constinit LineOutput output;
    output.write("joyvane", line);
}
