#pragma once

#include "platform/runtime/NSObject.h"

#include <functional>
#include <memory>

// Runs operations one at a time and in order, on a worker thread that it holds only while there is something to run.
// While it is suspended none starts. Each operation is released on the worker right after its run. Releasing a
// suspended queue drops what waits in it; what waits in another still runs. Any thread.
class NSOperationQueue final : public NSObject {
    NS_CLASS(NSOperationQueue)

    // No thread is made for it.
    std::shared_ptr<NSOperationQueue> init();

    // An operation that is running goes on. A queue begins unsuspended.
    void setSuspended(bool suspended);
    // Never waits. An empty block is ignored.
    void addOperationWithBlock(std::function<void()> block);

    ~NSOperationQueue() override;

private:
    NSOperationQueue();
    struct State;
    std::shared_ptr<State> m_state;
};
