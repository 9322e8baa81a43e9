#include "kit/dispatch/run_loop_sources.h"

#include "platform/foundation/time.h"

#include <algorithm>
#include <map>
#include <memory>

namespace {

using namespace seat;

struct Source {
    int descriptor;
    std::shared_ptr<std::function<void()>> callback;
};

struct TimerKey {
    double deadline;
    SourceToken token; // orders timers of the same instant as they were added
    friend auto operator<=>(const TimerKey&, const TimerKey&) = default;
};

// Never destroyed: services remove their sources while statics die.
struct Sources {
    RunLoopDriver* driver = nullptr; // non-owning
    SourceToken last = 0;
    std::map<SourceToken, Source> readable;
    std::map<TimerKey, std::function<void()>> timers;
    std::optional<double> announced;

    static Sources& shared() {
        static auto* const sources = new Sources;
        return *sources;
    }

    void announceDeadline() {
        const auto next = nextTimerDeadline();
        if (next == announced) return;
        announced = next;
        if (driver) driver->setNextDeadline(next);
    }
};

} // namespace

SourceToken seat::addReadableSource(int descriptor, std::function<void()> callback) {
    auto& sources = Sources::shared();
    const SourceToken token = ++sources.last;
    sources.readable.emplace(token, Source{descriptor, std::make_shared<std::function<void()>>(std::move(callback))});
    if (sources.driver) sources.driver->watchReadable(token, descriptor);
    return token;
}

SourceToken seat::addTimer(double seconds, std::function<void()> callback) {
    auto& sources = Sources::shared();
    const SourceToken token = ++sources.last;
    sources.timers.emplace(TimerKey{platform::CACurrentMediaTime() + seconds, token}, std::move(callback));
    sources.announceDeadline();
    return token;
}

void seat::removeSource(SourceToken token) {
    auto& sources = Sources::shared();
    // What a callback holds may remove sources itself when it dies: it dies last.
    if (const auto source = sources.readable.extract(token)) {
        if (sources.driver) sources.driver->unwatchReadable(token);
        return;
    }
    const auto found = std::find_if(sources.timers.begin(), sources.timers.end(),
                                    [token](const auto& timer) { return timer.first.token == token; });
    if (found == sources.timers.end()) return;
    const auto timer = sources.timers.extract(found);
    sources.announceDeadline();
}

void seat::setRunLoopDriver(RunLoopDriver* driver) {
    auto& sources = Sources::shared();
    if (sources.driver) {
        for (const auto& [token, source] : sources.readable) sources.driver->unwatchReadable(token);
        sources.driver->setNextDeadline(std::nullopt);
    }
    sources.driver = driver;
    if (!driver) return;
    for (const auto& [token, source] : sources.readable) driver->watchReadable(token, source.descriptor);
    driver->setNextDeadline(nextTimerDeadline());
}

void seat::readableSourceFired(SourceToken token) {
    auto& readable = Sources::shared().readable;
    const auto found = readable.find(token);
    if (found == readable.end()) return;
    // The callback may remove its own source.
    const auto callback = found->second.callback;
    if (*callback) (*callback)();
}

void seat::fireDueTimers() {
    auto& sources = Sources::shared();
    const double now = platform::CACurrentMediaTime();
    const SourceToken newest = sources.last;
    for (;;) {
        // One at a time: a callback may remove the next one.
        auto due = sources.timers.begin();
        while (due != sources.timers.end() && due->first.token > newest) ++due;
        if (due == sources.timers.end() || due->first.deadline > now) break;
        const auto callback = std::move(due->second);
        sources.timers.erase(due);
        if (callback) callback();
    }
    sources.announceDeadline();
}

std::optional<double> seat::nextTimerDeadline() {
    const auto& timers = Sources::shared().timers;
    if (timers.empty()) return std::nullopt;
    return timers.begin()->first.deadline;
}
