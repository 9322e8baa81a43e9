#include "services/common/log.h"

#include "kit/runtime/LogLine.h"
#include "kit/runtime/RepeatedLines.h"

#include <poll.h>
#include <string>
#include <unistd.h>
#include <utility>

namespace services {
namespace {

struct State {
    const char* name = "joyvane";
    std::function<void(std::string_view)> sink;
    seat::RepeatedLines repeated;

    // Never destroyed: handles may log while the program ends.
    static State& shared() {
        static auto* const state = new State;
        return *state;
    }
};

} // namespace

void setLogName(const char* name) { State::shared().name = name; }

void setLogSink(std::function<void(std::string_view line)> sink) {
    State::shared().sink = std::move(sink);
    State::shared().repeated = {};
}

void log(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    seat::LogLine line(format, arguments);
    va_end(arguments);

    State& state = State::shared();
    const auto leftOut = state.repeated.pass(line.text());
    if (!leftOut) return;
    line.addRepetitions(*leftOut);
    if (state.sink) return state.sink(line.text());
    // A reader that does not keep up loses lines, and never holds us up.
    ::pollfd room{STDERR_FILENO, POLLOUT, 0};
    if (::poll(&room, 1, 0) != 1 || !(room.revents & POLLOUT)) return;
    const std::string text = std::string(state.name) + ": " + std::string(line.text()) + "\n";
    // One call, so that lines of several programs in one journal do not mix. Nobody can be told when it fails.
    [[maybe_unused]] const auto written = ::write(STDERR_FILENO, text.data(), text.size());
}

} // namespace services
