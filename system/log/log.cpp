#include "system/log/log.h"

#include "platform/log.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <mutex>
#include <span>
#include <string_view>
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

// Takes no memory: it is also how one hears that there is none.
void NSLog(const char* format, ...) {
    constexpr std::string_view name = "joyvane: ";
    char text[name.size() + longestLine + 1];
    name.copy(text, name.size());
    char* const line = text + name.size();
    std::va_list arguments;
    va_start(arguments, format);
    const int wanted = std::vsnprintf(line, longestLine, format, arguments);
    va_end(arguments);
    if (wanted < 0) return;

    const std::size_t length = std::min(static_cast<std::size_t>(wanted), longestLine - 1);
    // A file's contents may have found their way into the reason: what is logged stays one line.
    for (char& c : std::span(line, length))
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f) c = ' ';

    auto& sink = Sink::shared();
    const std::lock_guard lock(sink.mutex);
    if (sink.write) {
        sink.write({line, length});
        return;
    }
    line[length] = '\n';
    // One call, so that lines of several processes on one terminal do not mix. Nobody can be told when it fails.
    [[maybe_unused]] const auto written = ::write(STDERR_FILENO, text, name.size() + length + 1);
}
