#pragma once

// The main run loop on the toolkit's event loop: main queue, readable descriptors, timers. One at a time, main thread
// only. Nothing runs, and no timer is set, while there is nothing to do.

#include "kit/dispatch/run_loop_sources.h"

#include <QSocketNotifier>
#include <QTimer>

#include <map>
#include <memory>

namespace seat {

class EventLoop final : public RunLoopDriver {
public:
    // The toolkit's application object exists already.
    EventLoop();
    ~EventLoop() override;
    EventLoop(const EventLoop&) = delete;
    EventLoop& operator=(const EventLoop&) = delete;

    void watchReadable(SourceToken token, int descriptor) override;
    void unwatchReadable(SourceToken token) override;
    void setNextDeadline(std::optional<double> deadline) override;

private:
    class Wake;

    void drain();

    // Shared with the main queue's waker, which another thread may be in the middle of calling.
    std::shared_ptr<Wake> m_wake;
    std::unique_ptr<QSocketNotifier> m_wakeNotifier;
    std::map<SourceToken, std::unique_ptr<QSocketNotifier>> m_notifiers;
    QTimer m_timer;
};

} // namespace seat
