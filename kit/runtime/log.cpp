#include "kit/runtime/log.h"

#include "kit/runtime/LogLine.h"
#include "kit/runtime/RepeatedLines.h"
#include "kit/seat.h"
#include "platform/log.h"

#include <mutex>

namespace {

// Never destroyed: threads may log while the process ends.
struct Sink {
    std::mutex mutex;
    std::function<void(std::string_view)> write;
    seat::RepeatedLines repeated;

    static Sink& shared() {
        static auto* const sink = new Sink;
        return *sink;
    }
};

} // namespace

void seat::setLogSink(std::function<void(std::string_view line)> sink) {
    const std::lock_guard lock(Sink::shared().mutex);
    Sink::shared().write = std::move(sink);
    Sink::shared().repeated = {};
}

void NSLog(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    seat::LogLine line(format, arguments);
    va_end(arguments);
    if (line.text().empty()) return;

    auto& sink = Sink::shared();
    const std::lock_guard lock(sink.mutex);
    if (sink.write) return sink.write(line.text());
    const auto leftOut = sink.repeated.pass(line.text());
    if (!leftOut) return;
    line.addRepetitions(*leftOut);
    seat::writeLogLine(line.text());
}
