#pragma once

#include "platform/runtime/NSObject.h"

#include <functional>
#include <memory>

// A queue with one worker thread of its own, started with the first operation that may run. Operations run in order
// while the queue is not suspended; each is released on the worker right after its run. Releasing a suspended queue
// drops what waits in it. The worker is joined before the process ends.
class NSOperationQueue final : public NSObject {
    NS_CLASS(NSOperationQueue)

    std::shared_ptr<NSOperationQueue> init();

    bool isSuspended() const;
    void setSuspended(bool suspended);
    void addOperationWithBlock(std::function<void()> block);

    ~NSOperationQueue() override;

private:
    NSOperationQueue();
    struct State;
    std::shared_ptr<State> m_state;
};
