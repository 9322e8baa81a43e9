#pragma once

#include <string>

namespace jvnd {

// One line to the standard output, at once. A reader that does not keep up loses lines, and never holds us up.
void sayLine(const std::string& line);

} // namespace jvnd
