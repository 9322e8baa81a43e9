#include "kit/runtime/log.h"

#include "kit/runtime/hidden_addresses.h"
#include "kit/seat.h"
#include "platform/log.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <mutex>
#include <span>
#include <string_view>

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
    char text[longestLine];
    std::va_list arguments;
    va_start(arguments, format);
    const int wanted = std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    if (wanted < 0) return;

    const std::size_t length = std::min(static_cast<std::size_t>(wanted), sizeof text - 1);
    const std::span line(text, seat::hideAddresses({text, length}));
    // A file's contents may have found their way into the reason: what is logged stays one line.
    for (char& c : line)
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f) c = ' ';

    auto& sink = Sink::shared();
    const std::lock_guard lock(sink.mutex);
    const std::string_view logged(line.data(), line.size());
    if (sink.write)
        sink.write(logged);
    else
        seat::writeLogLine(logged);
}
