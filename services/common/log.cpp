#include "services/common/log.h"

#include "kit/runtime/LogLine.h"
#include "kit/runtime/RepeatedLines.h"
#include "system/log/LineOutput.h"

#include <utility>

namespace services {
namespace {

struct State {
    const char* name = "joyvane";
    std::function<void(std::string_view)> sink;
    seat::RepeatedLines repeated;
    seat::LineOutput output;

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
    state.output.write(state.name, line.text());
}

} // namespace services
