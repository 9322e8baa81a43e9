#include "platform/notify.h"

#include "kit/dispatch/main_queue.h"
#include "platform/dispatch.h"
#include "platform/log.h"
#include "system/bus/SessionBus.h"
#include "system/notify/NotifyListener.h"
#include "system/notify/signal_name.h"

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>

namespace {

// How long a post on another thread waits for the bus at most.
constexpr std::chrono::milliseconds timeout{100};

// Where a poster waits for the main thread, which may come too late or never.
class Handover {
public:
    void finish() {
        const std::lock_guard lock(m_mutex);
        m_done = true;
        m_changed.notify_all();
    }
    void wait() {
        std::unique_lock lock(m_mutex);
        m_changed.wait_for(lock, timeout, [this] { return m_done; });
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_done = false;
};

// The bus treats what comes from us in order: when it answers, it has passed on all that was sent before.
void finishOnceTheBusAnswers(const std::shared_ptr<Handover>& handover) {
    constexpr const char* bus = "org.freedesktop.DBus";
    seat::SessionBus::shared().call({bus, "/org/freedesktop/DBus", bus, "GetId"}, "", {}, timeout,
                                    [handover](const seat::SessionBus::Reply&) { handover->finish(); });
}

} // namespace

std::uint32_t notify_post(const char* name) {
    auto signal = seat::signalForNotification(name ? name : "");
    if (!signal) {
        NSLog("notify_post %s: not a name of three parts or more", name ? name : "(null)");
        return NOTIFY_STATUS_FAILED;
    }
    // The main queue keeps the order of posting, across threads too, for the bus and for the listeners here.
    // A worker goes on to speak to whoever listens, who must have heard of it by then.
    const auto handover = dispatch_is_main_thread() ? nullptr : std::make_shared<Handover>();
    seat::queueOnMain([posted = std::string(name), signal = std::move(*signal), handover] {
        seat::SessionBus::shared().emitSignal(signal);
        if (handover) finishOnceTheBusAnswers(handover);
        seat::deliverNotification(posted);
    });
    if (handover) handover->wait();
    return NOTIFY_STATUS_OK;
}
