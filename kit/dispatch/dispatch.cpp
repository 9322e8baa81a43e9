#include "platform/dispatch.h"

#include "kit/dispatch/WorkerPool.h"
#include "kit/dispatch/main_queue.h"
#include "kit/dispatch/shutdown.h"
#include "kit/seat.h"

#include <cstdio>
#include <iostream>

// The global queues share their workers: nothing here has a priority other than the default.
class DispatchQueue {
public:
    bool isMain = false;
};

dispatch_queue_t dispatch_get_main_queue() {
    static DispatchQueue queue{true};
    return &queue;
}

dispatch_queue_t dispatch_get_global_queue(long, unsigned long) {
    static DispatchQueue queue{false};
    return &queue;
}

void dispatch_async(dispatch_queue_t queue, std::function<void()> block) {
    if (!queue || !block) return;
    if (queue->isMain)
        seat::queueOnMain(std::move(block));
    else
        seat::WorkerPool::shared().run(std::move(block));
}

bool dispatch_is_main_thread() {
    thread_local const bool isMain = seat::isMainThread();
    return isMain;
}

bool seat::shutdownDispatch(std::chrono::milliseconds grace) { return WorkerPool::shared().shutDown(grace); }

int seat::finishProcess(int code) {
    if (shutdownDispatch()) return code;
    std::cout.flush();
    std::fflush(nullptr);
    ::_exit(code);
}
