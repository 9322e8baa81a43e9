#include "platform/messaging_center.h"

#include "platform/runtime/Class.h"
#include "platform/runtime/NSObject.h"
#include "system/bus/SessionBus.h"
#include "system/messaging/delivered_messages.h"
#include "system/messaging/message_sender.h"

#include <map>

namespace {

struct Counts {
    std::size_t servers = 0; // that run
    std::uint64_t delivered = 0;
};

Counts& counts() {
    static Counts all;
    return all;
}

} // namespace

struct CPDistributedMessagingCenter::State {
    struct Registered {
        std::weak_ptr<NSObject> target;
        SEL selector;
    };

    std::string name;
    std::map<std::string, Registered> messages;
    seat::SessionBus::Token methods = 0; // not 0 while the server runs

    seat::SessionBus::CallResult deliver(const seat::BusCall& call) const;
};

seat::SessionBus::CallResult CPDistributedMessagingCenter::State::deliver(const seat::BusCall& call) const {
    const auto found = messages.find(call.member);
    const auto target = found == messages.end() ? nullptr : found->second.target.lock();
    if (!target) return seat::SessionBus::CallResult::UnknownMethod;
    ++counts().delivered;
    objc_msgSend(*target, found->second.selector, {id(call.member), id(call.dictionary)});
    return seat::SessionBus::CallResult::Done;
}

std::optional<std::uint64_t> seat::deliveredMessages() {
    return counts().servers > 0 ? std::optional(counts().delivered) : std::nullopt;
}

NS_CLASS_IMPLEMENTATION(CPDistributedMessagingCenter, NSObject)

CPDistributedMessagingCenter::CPDistributedMessagingCenter() : m_state(std::make_unique<State>()) {}
CPDistributedMessagingCenter::~CPDistributedMessagingCenter() { stopServer(); }

std::shared_ptr<CPDistributedMessagingCenter> CPDistributedMessagingCenter::centerNamed(const std::string& name) {
    // Never destroyed: a center may live in a static.
    static auto* const centers = new std::map<std::string, std::weak_ptr<CPDistributedMessagingCenter>>;
    auto& known = (*centers)[name];
    auto center = known.lock();
    if (!center) {
        center = alloc();
        center->m_state->name = name;
        known = center;
    }
    return center;
}

void CPDistributedMessagingCenter::runServerOnCurrentThread() {
    if (m_state->methods != 0) return;
    auto& bus = seat::SessionBus::shared();
    // The methods first: whoever sees the name may call at once.
    m_state->methods = bus.addMethods(seat::messagingCenterPath, m_state->name, [this](const seat::BusCall& call) {
        const auto alive = shared_from_this(); // the target may drop the last reference
        return m_state->deliver(call);
    });
    bus.addName(m_state->name, nullptr); // the bus connection logs how it stands
    ++counts().servers;
}

void CPDistributedMessagingCenter::stopServer() {
    if (m_state->methods == 0) return;
    auto& bus = seat::SessionBus::shared();
    bus.remove(std::exchange(m_state->methods, 0));
    bus.removeName(m_state->name);
    --counts().servers;
}

void CPDistributedMessagingCenter::registerForMessageName_target_selector(const std::string& message,
                                                                          const std::shared_ptr<NSObject>& target,
                                                                          SEL selector) {
    m_state->messages[message] = {target, selector};
}

void CPDistributedMessagingCenter::unregisterForMessageName(const std::string& message) {
    m_state->messages.erase(message);
}

void rocketbootstrap_distributedmessagingcenter_apply(const std::shared_ptr<CPDistributedMessagingCenter>&) {
    // Every process of this user reaches a name on the session bus as it is.
}
