// A module whose initialisers say that they run, and fail.

#include <stdexcept>
#include <unistd.h>

namespace {

bool fail() {
    constexpr char text[] = "a throwing initialiser ran\n";
    [[maybe_unused]] const auto written = ::write(STDERR_FILENO, text, sizeof text - 1);
    throw std::runtime_error("no such luck");
}

[[maybe_unused]] const bool initialised = fail();

} // namespace
