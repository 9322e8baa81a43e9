#pragma once

#include "platform/foundation/NSDictionary.h"
#include "platform/runtime/NSObject.h"

#include <memory>
#include <string>

// A named message server that other processes send dictionaries to. Main thread only. Messages are delivered one at a
// time on the main run loop while the server runs; a malformed one is dropped with a logged reason.
class CPDistributedMessagingCenter final : public NSObject {
    NS_CLASS(CPDistributedMessagingCenter)

    // The same object for the same name while one is alive.
    static std::shared_ptr<CPDistributedMessagingCenter> centerNamed(const std::string& name);

    // Running a running server, and stopping a stopped one, do nothing.
    void runServerOnCurrentThread();
    void stopServer();
    // The target is weak; the selector takes the message's name and its dictionary (nil when it carried none).
    void registerForMessageName_target_selector(const std::string& message, const std::shared_ptr<NSObject>& target,
                                                SEL selector);
    // One target a name: registering again replaces it. A message that nobody registered for is
    // dropped.
    void unregisterForMessageName(const std::string& message);

    struct State; // opaque

    ~CPDistributedMessagingCenter() override;

private:
    CPDistributedMessagingCenter();
    std::unique_ptr<State> m_state;
};

// Lets processes of other sandboxes reach the server. nil: nothing happens.
void rocketbootstrap_distributedmessagingcenter_apply(const std::shared_ptr<CPDistributedMessagingCenter>& center);
