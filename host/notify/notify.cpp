#include "platform/notify.h"

#include "host/bus/SessionBus.h"
#include "host/dispatch/main_queue.h"
#include "host/notify/NotifyListener.h"
#include "host/notify/signal_name.h"
#include "platform/log.h"

#include <string>

std::uint32_t notify_post(const char* name) {
    auto signal = host::signalForNotification(name ? name : "");
    if (!signal) {
        NSLog("notify_post %s: not a name of three parts or more", name ? name : "(null)");
        return NOTIFY_STATUS_FAILED;
    }
    // The main queue keeps the order of posting, across threads too, for the bus and for the listeners here.
    host::queueOnMain([posted = std::string(name), signal = std::move(*signal)] {
        host::SessionBus::shared().emitSignal(signal);
        host::deliverNotification(posted);
    });
    return NOTIFY_STATUS_OK;
}
