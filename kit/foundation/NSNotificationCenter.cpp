#include "platform/foundation/NSNotificationCenter.h"

#include <algorithm>
#include <mutex>

NS_CLASS_IMPLEMENTATION(NSNotificationCenter, NSObject)

namespace {

struct Registration {
    const NSObject* identity; // non-owning, only compared: a dying observer has no strong reference left to compare
    std::weak_ptr<NSObject> observer;
    SEL selector;
    std::string name;
    bool anySender;
    std::weak_ptr<NSObject> sender;
    bool removed = false; // guarded by the centre's mutex
};

} // namespace

struct NSNotificationCenter::State {
    std::mutex mutex;
    std::vector<std::shared_ptr<Registration>> registrations;

    // With the mutex held.
    void drop(auto&& unwanted) {
        std::erase_if(registrations, [&](const std::shared_ptr<Registration>& registration) {
            if (!unwanted(*registration)) return false;
            registration->removed = true;
            return true;
        });
    }
    bool isRemoved(const Registration& registration) {
        const std::lock_guard lock(mutex);
        return registration.removed;
    }
};

NSNotificationCenter::NSNotificationCenter() : m_state(std::make_unique<State>()) {}
NSNotificationCenter::~NSNotificationCenter() = default;

std::shared_ptr<NSNotificationCenter> NSNotificationCenter::defaultCenter() {
    // Never destroyed: observers take themselves out while statics die.
    static const auto* const center = new std::shared_ptr<NSNotificationCenter>(alloc());
    return *center;
}

void NSNotificationCenter::addObserver_selector_name_object(const std::shared_ptr<NSObject>& observer, SEL selector,
                                                            std::string name, const std::shared_ptr<NSObject>& object) {
    if (!observer || !selector) return;
    auto registration = std::make_shared<Registration>(
        Registration{observer.get(), observer, selector, std::move(name), object == nullptr, object});
    const std::lock_guard lock(m_state->mutex);
    m_state->drop([](const Registration& other) { return other.observer.expired(); });
    m_state->registrations.push_back(std::move(registration));
}

void NSNotificationCenter::removeObserver(const NSObject* observer) {
    const std::lock_guard lock(m_state->mutex);
    m_state->drop([=](const Registration& registration) { return registration.identity == observer; });
}

void NSNotificationCenter::postNotificationName_object(std::string_view name, const std::shared_ptr<NSObject>& object) {
    struct Receiver {
        std::shared_ptr<NSObject> observer; // kept alive until it has been called
        std::shared_ptr<Registration> registration;
    };
    std::vector<Receiver> receivers;
    {
        const std::lock_guard lock(m_state->mutex);
        for (const auto& registration : m_state->registrations) {
            if (registration->name != name) continue;
            // A sender that has died is not the absent one.
            if (!registration->anySender && (!object || registration->sender.lock() != object)) continue;
            if (auto observer = registration->observer.lock()) receivers.push_back({std::move(observer), registration});
        }
    }
    const std::initializer_list<id> arguments{std::string(name), object};
    for (const auto& receiver : receivers)
        // One that an earlier receiver took out is not called any more.
        if (!m_state->isRemoved(*receiver.registration))
            objc_msgSend(*receiver.observer, receiver.registration->selector, arguments);
}
