// Message servers, reached from this process alone.

#include "kit/dispatch/main_queue.h"
#include "platform/log.h"
#include "platform/messaging_center.h"
#include "platform/runtime/Class.h"
#include "platform/runtime/NSObject.h"
#include "system/messaging/message_sender.h"

#include <map>

struct CPDistributedMessagingCenter::State {
    struct Registered {
        std::weak_ptr<NSObject> target;
        SEL selector;
    };
    std::string name;
    std::map<std::string, Registered> messages;

    // nullptr when no such server runs.
    static State* running(const std::string& name);
};

namespace {

// Never destroyed: a center may live in a static.
std::map<std::string, std::weak_ptr<CPDistributedMessagingCenter>>& centers() {
    static auto* const all = new std::map<std::string, std::weak_ptr<CPDistributedMessagingCenter>>;
    return *all;
}
std::map<std::string, CPDistributedMessagingCenter::State*>& servers() {
    static auto* const all = new std::map<std::string, CPDistributedMessagingCenter::State*>;
    return *all;
}

} // namespace

NS_CLASS_IMPLEMENTATION(CPDistributedMessagingCenter, NSObject)

CPDistributedMessagingCenter::State* CPDistributedMessagingCenter::State::running(const std::string& name) {
    const auto found = servers().find(name);
    return found == servers().end() ? nullptr : found->second;
}

CPDistributedMessagingCenter::CPDistributedMessagingCenter() : m_state(std::make_unique<State>()) {}
CPDistributedMessagingCenter::~CPDistributedMessagingCenter() { stopServer(); }

std::shared_ptr<CPDistributedMessagingCenter> CPDistributedMessagingCenter::centerNamed(const std::string& name) {
    auto& known = centers()[name];
    auto center = known.lock();
    if (!center) {
        center = alloc();
        center->m_state->name = name;
        known = center;
    }
    return center;
}

void CPDistributedMessagingCenter::runServerOnCurrentThread() { servers()[m_state->name] = m_state.get(); }

void CPDistributedMessagingCenter::stopServer() {
    if (State::running(m_state->name) == m_state.get()) servers().erase(m_state->name);
}

void CPDistributedMessagingCenter::registerForMessageName_target_selector(const std::string& message,
                                                                          const std::shared_ptr<NSObject>& target,
                                                                          SEL selector) {
    m_state->messages[message] = {target, selector};
}

void CPDistributedMessagingCenter::unregisterForMessageName(const std::string& message) {
    m_state->messages.erase(message);
}

void rocketbootstrap_distributedmessagingcenter_apply(const std::shared_ptr<CPDistributedMessagingCenter>&) {}

void seat::sendMessage(const std::string& center, const std::string& message,
                       const std::shared_ptr<NSDictionary>& dictionary, std::function<void(bool)> delivered) {
    queueOnMain([center, message, dictionary, delivered] {
        const auto keep = centers()[center].lock(); // the target may drop the last reference
        const auto* const server = CPDistributedMessagingCenter::State::running(center);
        std::shared_ptr<NSObject> target;
        SEL selector;
        if (server)
            if (const auto found = server->messages.find(message); found != server->messages.end()) {
                target = found->second.target.lock();
                selector = found->second.selector;
            }
        if (server && !target) NSLog("message %s to %s: nobody has registered for it", message.c_str(), center.c_str());
        if (target) objc_msgSend(*target, selector, {id(message), id(dictionary)});
        if (delivered) delivered(target != nullptr);
    });
}
