#include "system/notify/NotifyListener.h"

#include "system/bus/SessionBus.h"
#include "system/notify/signal_name.h"

#include <algorithm>
#include <vector>

namespace {

using Heard = std::weak_ptr<std::function<void()>>;

struct Registered {
    std::string name;
    Heard heard;
};

// Never destroyed: a listener may be a static.
std::vector<Registered>& listeners() {
    static auto* const all = new std::vector<Registered>;
    return *all;
}

} // namespace

seat::NotifyListener::NotifyListener(const std::string& name, std::function<void()> heard, From from)
    : m_heard(std::make_shared<std::function<void()>>(std::move(heard))), m_name(name) {
    listeners().push_back({name, m_heard});
    if (from == From::ThisProcess) return;
    if (const auto signal = signalForNotification(name))
        m_signal = SessionBus::shared().addSignal(signal->interface, signal->member,
                                                  [heard = Heard(m_heard)](const BusSignal&) {
                                                      if (const auto alive = heard.lock()) (*alive)();
                                                  });
}

seat::NotifyListener::~NotifyListener() {
    std::erase_if(listeners(), [this](const Registered& each) { return each.heard.lock() == m_heard; });
    SessionBus::shared().remove(m_signal);
}

void seat::deliverNotification(const std::string& name) {
    // A listener may remove itself or others.
    std::vector<Heard> concerned;
    for (const auto& each : listeners())
        if (each.name == name) concerned.push_back(each.heard);
    for (const auto& heard : concerned)
        if (const auto alive = heard.lock()) (*alive)();
}
