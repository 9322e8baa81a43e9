#include "system/log/log.h"

#include "platform/log.h"

#include <cstdarg>
#include <cstdio>
#include <mutex>
#include <string>

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

} // namespace

void seat::setLogSink(std::function<void(std::string_view line)> sink) {
    const std::lock_guard lock(Sink::shared().mutex);
    Sink::shared().write = std::move(sink);
}

void NSLog(const char* format, ...) {
    char text[1024];
    std::va_list arguments;
    va_start(arguments, format);
    const int wanted = std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    if (wanted < 0) return;
    std::string line(text);
    for (char& c : line)
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f) c = ' ';
    auto& sink = Sink::shared();
    const std::lock_guard lock(sink.mutex);
    if (sink.write)
        sink.write(line);
    else
        std::fprintf(stderr, "joyvane: %s\n", line.c_str());
}
