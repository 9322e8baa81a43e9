#include "tests/support/SystemCalls.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <dlfcn.h>
#include <mutex>
#include <sys/socket.h>
#include <unistd.h>

namespace {

using testing_support::SystemCall;

struct Wish {
    int calls = 0;
    int first = 0; // 0: none is to fail
    int times = 0;
    int errorNumber = 0;
    std::function<void(int)> watch;
};

// Set up before anything that has a constructor: calls are made before main(), and after it.
constinit std::atomic<bool> isActive = false;
std::mutex& mutex() {
    static auto& only = *new std::mutex;
    return only;
}
std::array<Wish, testing_support::systemCallCount>& wishes() {
    static auto& all = *new std::array<Wish, testing_support::systemCallCount>;
    return all;
}
Wish& wish(SystemCall call) { return wishes()[static_cast<std::size_t>(call)]; }

// True, and errno, when the call is not to be made.
bool fails(SystemCall call, int descriptor) {
    if (!isActive || testing_support::PeerThread::isOne) return false;
    std::function<void(int)> watch;
    {
        const std::lock_guard lock(mutex());
        Wish& wanted = wish(call);
        ++wanted.calls;
        if (wanted.first > 0 && wanted.calls >= wanted.first && wanted.calls < wanted.first + wanted.times) {
            errno = wanted.errorNumber;
            return true;
        }
        watch = wanted.watch;
    }
    if (watch) watch(descriptor);
    return false;
}

} // namespace

namespace testing_support {

SystemCalls::SystemCalls() {
    clear();
    isActive = true;
}

SystemCalls::~SystemCalls() {
    isActive = false;
    clear();
}

void SystemCalls::failAt(SystemCall call, int n, int errorNumber, int times) {
    const std::lock_guard lock(mutex());
    Wish& wanted = wish(call);
    wanted.calls = 0;
    wanted.first = n;
    wanted.times = times;
    wanted.errorNumber = errorNumber;
}

void SystemCalls::before(SystemCall call, std::function<void(int)> watch) {
    const std::lock_guard lock(mutex());
    wish(call).watch = std::move(watch);
}

int SystemCalls::count(SystemCall call) const {
    const std::lock_guard lock(mutex());
    return wish(call).calls;
}

void SystemCalls::clear() {
    const std::lock_guard lock(mutex());
    wishes().fill({});
}

} // namespace testing_support

// A program's own definition of a library's function stands before the library's. A sanitizer watches some of them,
// too, and then has the next word.
#define NEXT_CALL(result, name, parameters)                                                                            \
    extern "C" [[gnu::weak]] result __interceptor_##name parameters;                                                   \
    static auto* next_##name() {                                                                                       \
        static auto* const next = reinterpret_cast<result(*) parameters>(                                              \
            __interceptor_##name ? reinterpret_cast<void*>(&__interceptor_##name) : ::dlsym(RTLD_NEXT, #name));        \
        return next;                                                                                                   \
    }
#define OWN_CALL extern "C" [[gnu::visibility("default")]]

NEXT_CALL(int, socket, (int, int, int))
NEXT_CALL(int, connect, (int, const ::sockaddr*, ::socklen_t))
NEXT_CALL(ssize_t, send, (int, const void*, std::size_t, int))
NEXT_CALL(ssize_t, recv, (int, void*, std::size_t, int))
NEXT_CALL(ssize_t, sendmsg, (int, const ::msghdr*, int))
NEXT_CALL(ssize_t, recvmsg, (int, ::msghdr*, int))
NEXT_CALL(int, setsockopt, (int, int, int, const void*, ::socklen_t))
NEXT_CALL(int, close, (int))
NEXT_CALL(int, pipe2, (int*, int))
NEXT_CALL(::pid_t, fork, ())

OWN_CALL int socket(int domain, int type, int protocol) noexcept {
    return fails(SystemCall::Socket, -1) ? -1 : next_socket()(domain, type, protocol);
}
OWN_CALL int connect(int descriptor, const ::sockaddr* address, ::socklen_t size) {
    return fails(SystemCall::Connect, descriptor) ? -1 : next_connect()(descriptor, address, size);
}
OWN_CALL ssize_t send(int descriptor, const void* bytes, std::size_t size, int flags) {
    return fails(SystemCall::Send, descriptor) ? -1 : next_send()(descriptor, bytes, size, flags);
}
OWN_CALL ssize_t recv(int descriptor, void* bytes, std::size_t size, int flags) {
    return fails(SystemCall::Receive, descriptor) ? -1 : next_recv()(descriptor, bytes, size, flags);
}
OWN_CALL ssize_t sendmsg(int descriptor, const ::msghdr* message, int flags) {
    return fails(SystemCall::SendMessage, descriptor) ? -1 : next_sendmsg()(descriptor, message, flags);
}
OWN_CALL ssize_t recvmsg(int descriptor, ::msghdr* message, int flags) {
    return fails(SystemCall::ReceiveMessage, descriptor) ? -1 : next_recvmsg()(descriptor, message, flags);
}
OWN_CALL int setsockopt(int descriptor, int level, int option, const void* value, ::socklen_t size) noexcept {
    return fails(SystemCall::SetOption, descriptor) ? -1 : next_setsockopt()(descriptor, level, option, value, size);
}
OWN_CALL int close(int descriptor) { return fails(SystemCall::Close, descriptor) ? -1 : next_close()(descriptor); }
OWN_CALL int pipe2(int* ends, int flags) noexcept {
    return fails(SystemCall::Pipe, -1) ? -1 : next_pipe2()(ends, flags);
}
OWN_CALL ::pid_t fork() noexcept { return fails(SystemCall::Fork, -1) ? -1 : next_fork()(); }
