#include "desktop/window/EventLoop.h"

#include "kit/dispatch/main_queue.h"
#include "kit/seat.h"

#include <sys/eventfd.h>
#include <unistd.h>

class seat::EventLoop::Wake {
public:
    Wake() : m_descriptor(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}
    ~Wake() { close(m_descriptor); }
    Wake(const Wake&) = delete;
    Wake& operator=(const Wake&) = delete;

    int descriptor() const { return m_descriptor; }
    void signal() const { eventfd_write(m_descriptor, 1); }
    void clear() const {
        eventfd_t count = 0;
        eventfd_read(m_descriptor, &count);
    }

private:
    int m_descriptor;
};

// Other threads write to a descriptor and never call into the toolkit, whose own locks a race detector cannot see.
seat::EventLoop::EventLoop()
    : m_wake(std::make_shared<Wake>()),
      m_wakeNotifier(std::make_unique<QSocketNotifier>(m_wake->descriptor(), QSocketNotifier::Read)) {
    QObject::connect(m_wakeNotifier.get(), &QSocketNotifier::activated, [this] { drain(); });
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&m_timer, &QTimer::timeout, [] { fireDueTimers(); });
    setRunLoopDriver(this);
    setWakeMainQueue([wake = m_wake] { wake->signal(); });
}

seat::EventLoop::~EventLoop() {
    setWakeMainQueue(nullptr);
    setRunLoopDriver(nullptr);
}

void seat::EventLoop::drain() {
    m_wake->clear();
    drainMainQueue();
}

void seat::EventLoop::watchReadable(SourceToken token, int descriptor) {
    auto notifier = std::make_unique<QSocketNotifier>(descriptor, QSocketNotifier::Read);
    QObject::connect(notifier.get(), &QSocketNotifier::activated, [token] { readableSourceFired(token); });
    m_notifiers.insert_or_assign(token, std::move(notifier));
}

void seat::EventLoop::unwatchReadable(SourceToken token) {
    const auto found = m_notifiers.find(token);
    if (found == m_notifiers.end()) return;
    // A source may remove itself from within its callback, in the middle of its notifier's signal.
    found->second->setEnabled(false);
    found->second.release()->deleteLater();
    m_notifiers.erase(found);
}

void seat::EventLoop::setNextDeadline(std::optional<double> deadline) {
    // A held clock does not reach the deadline by waiting: whoever moves it fires the timers.
    if (!deadline || clockIsHeld()) return m_timer.stop();
    const double milliseconds = std::ceil((*deadline - platform::CACurrentMediaTime()) * 1000);
    m_timer.start(static_cast<int>(std::clamp(milliseconds, 0.0, 1e9)));
}
