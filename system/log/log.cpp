#include "system/log/log.h"

#include "platform/log.h"

#include <cstdarg>
#include <cstdio>
#include <mutex>
#include <string>
#include <unistd.h>

namespace {

// Never destroyed: threads may log while the process ends.
struct Sink {
    std::mutex mutex;
    std::function<void(std::string_view)> write;

    static Sink& shared() {
        static auto* const sink = new Sink;
        return *sink;
    }
};

constexpr std::size_t longestLine = 1024;

} // namespace

void seat::setLogSink(std::function<void(std::string_view line)> sink) {
    const std::lock_guard lock(Sink::shared().mutex);
    Sink::shared().write = std::move(sink);
}

void NSLog(const char* format, ...) {
    char text[longestLine];
    std::va_list arguments;
    va_start(arguments, format);
    const int wanted = std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    if (wanted < 0) return;

    std::string line(text);
    // A file's contents may have found their way into the reason: what is logged stays one line.
    for (char& c : line)
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f) c = ' ';

    auto& sink = Sink::shared();
    const std::lock_guard lock(sink.mutex);
    if (sink.write) {
        sink.write(line);
        return;
    }
    line = "joyvane: " + line + "\n";
    // One call, so that lines of several processes on one terminal do not mix. Nobody can be told when it fails.
    [[maybe_unused]] const auto written = ::write(STDERR_FILENO, line.data(), line.size());
}
