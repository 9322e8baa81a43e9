// Notifications reach the listeners of this process alone, by way of the main queue.

#include "platform/notify.h"

#include "kit/dispatch/main_queue.h"
#include "platform/log.h"
#include "system/notify/NotifyListener.h"

#include <algorithm>
#include <string_view>
#include <vector>

namespace {

using Heard = std::weak_ptr<std::function<void()>>;

struct Registered {
    std::string name;
    Heard heard;
};

std::vector<Registered>& listeners() {
    static auto* const all = new std::vector<Registered>;
    return *all;
}

} // namespace

std::uint32_t notify_post(const char* name) {
    const std::string_view posted = name ? name : "";
    if (std::ranges::count(posted, '.') < 2) {
        NSLog("notify_post %s: not a name of three parts or more", name ? name : "(null)");
        return NOTIFY_STATUS_FAILED;
    }
    seat::queueOnMain([posted = std::string(posted)] { seat::deliverNotification(posted); });
    return NOTIFY_STATUS_OK;
}

seat::NotifyListener::NotifyListener(const std::string& name, std::function<void()> heard, From)
    : m_heard(std::make_shared<std::function<void()>>(std::move(heard))), m_name(name) {
    listeners().push_back({name, m_heard});
}

seat::NotifyListener::~NotifyListener() {
    std::erase_if(listeners(), [this](const Registered& each) { return each.heard.lock() == m_heard; });
}

void seat::deliverNotification(const std::string& name) {
    std::vector<Heard> concerned;
    for (const auto& each : listeners())
        if (each.name == name) concerned.push_back(each.heard);
    for (const auto& heard : concerned)
        if (const auto alive = heard.lock()) (*alive)();
}
