// Ends itself while a worker sits in a receive of 20 seconds; what it prints says how far it got.

#include "kit/dispatch/shutdown.h"
#include "platform/dispatch.h"

#include <cstdio>
#include <semaphore>
#include <string>
#include <sys/socket.h>
#include <sys/time.h>

namespace {

struct Announcing {
    ~Announcing() { std::puts("statics destroyed"); }
} announcing;

std::counting_semaphore<> started{0};

void receiveForTwentySeconds(int descriptor) {
    const timeval timeout{20, 0};
    ::setsockopt(descriptor, SOL_SOCKET, SO_RCVTIMEO, &timeout, sizeof timeout);
    started.release();
    char byte = 0;
    ::recv(descriptor, &byte, 1, MSG_WAITALL);
    std::puts("received");
}

} // namespace

int main(int argc, char** argv) {
    const auto global = dispatch_get_global_queue(DISPATCH_QUEUE_PRIORITY_DEFAULT, 0);
    int ends[2];
    const std::string mode = argc > 1 ? argv[1] : "";
    if (mode.starts_with("waiting")) {
        ::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends);
        dispatch_async(global, [&] { receiveForTwentySeconds(ends[0]); });
    } else {
        dispatch_async(global, [] { started.release(); });
    }
    started.acquire();
    std::puts("main ends");
    if (mode == "waiting-at-exit") return 7;
    return seat::finishProcess(7);
}
