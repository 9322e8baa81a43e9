#pragma once

#include "platform/foundation/id.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

inline constexpr const char* UIApplicationDidEnterBackgroundNotification =
    "UIApplicationDidEnterBackgroundNotification";

// Notifications inside this process. Observers are not owned and are dropped when they die; each is called on the
// posting thread, outside any lock, in the order of their registration, with the notification's name and sender. One
// that is removed while a notification is being delivered is not called any more; one that is added meanwhile hears the
// next one. An observer that registers twice is called twice. Any thread.
class NSNotificationCenter final : public NSObject {
    NS_CLASS(NSNotificationCenter)

    // Never nil, the same at each call, also while the process ends.
    static std::shared_ptr<NSNotificationCenter> defaultCenter();

    // An absent sender means any sender; a sender that has died since matches none. A nil observer or selector is
    // ignored. The selector's method takes the name and the sender.
    void addObserver_selector_name_object(const std::shared_ptr<NSObject>& observer, SEL selector, std::string name,
                                          const std::shared_ptr<NSObject>& object);
    // All of its registrations. Takes a plain pointer so that a destructor can say that its object is gone.
    void removeObserver(const NSObject* observer);
    // Returns when every observer has been called; `object` is the sender and may be nil.
    void postNotificationName_object(std::string_view name, const std::shared_ptr<NSObject>& object);

    ~NSNotificationCenter() override;

private:
    NSNotificationCenter();
    struct State;
    std::unique_ptr<State> m_state;
};
