#include "services/common/log.h"

#include "kit/runtime/hidden_addresses.h"

#include <algorithm>
#include <chrono>
#include <cstdarg>
#include <cstdio>
#include <string>
#include <unistd.h>
#include <utility>
#include <vector>

namespace services {
namespace {

using Steady = std::chrono::steady_clock;

constexpr std::size_t longestLine = 1024;
constexpr std::size_t remembered = 16; // lines; one that is not among them any more is written as new
constexpr std::chrono::seconds quiet{60};

struct Line {
    std::string text;
    Steady::time_point written;
    std::uint64_t held = 0; // repetitions since then
};

struct State {
    const char* name = "joyvane";
    std::function<void(std::string_view)> sink;
    std::vector<Line> lines; // the longest unused first

    // Never destroyed: handles may log while the program ends.
    static State& shared() {
        static auto* const state = new State;
        return *state;
    }
};

// The repetitions to be said with the line now; nothing when it is only to be counted.
std::pair<bool, std::uint64_t> count(State& state, const std::string& text) {
    const auto now = Steady::now();
    Line line{text, now};
    bool isDue = true;
    std::uint64_t held = 0;
    const auto known =
        std::find_if(state.lines.begin(), state.lines.end(), [&text](const Line& entry) { return entry.text == text; });
    if (known != state.lines.end()) {
        isDue = now - known->written >= quiet;
        held = known->held;
        if (!isDue) line = {text, known->written, held + 1};
        state.lines.erase(known);
    } else if (state.lines.size() == remembered) {
        state.lines.erase(state.lines.begin());
    }
    state.lines.push_back(std::move(line));
    return {isDue, held};
}

} // namespace

void setLogName(const char* name) { State::shared().name = name; }

void setLogSink(std::function<void(std::string_view line)> sink) {
    State::shared().sink = std::move(sink);
    State::shared().lines.clear();
}

void log(const char* format, ...) {
    char buffer[longestLine];
    std::va_list arguments;
    va_start(arguments, format);
    const int wanted = std::vsnprintf(buffer, sizeof buffer, format, arguments);
    va_end(arguments);
    if (wanted < 0) return;

    std::string text = seat::withoutAddresses(buffer);
    // A peer's name may have found its way into the reason: what is logged stays one line.
    for (char& c : text)
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f) c = ' ';

    State& state = State::shared();
    const auto [isDue, held] = count(state, text);
    if (!isDue) return;
    if (held > 0) text += " (and " + std::to_string(held) + " times before)";
    if (state.sink) return state.sink(text);
    text = std::string(state.name) + ": " + text + "\n";
    // One call, so that lines of several programs in one journal do not mix. Nobody can be told when it fails.
    [[maybe_unused]] const auto written = ::write(STDERR_FILENO, text.data(), text.size());
}

} // namespace services
