// The C library's calls, each asking first whether it is to fail.

#include "tests/support/SystemCalls.h"

#include <dlfcn.h>
#include <sys/socket.h>
#include <unistd.h>

using testing_support::SystemCall;

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
    return testing_support::systemCallFails(SystemCall::Socket, -1) ? -1 : next_socket()(domain, type, protocol);
}
OWN_CALL int connect(int descriptor, const ::sockaddr* address, ::socklen_t size) {
    return testing_support::systemCallFails(SystemCall::Connect, descriptor)
               ? -1
               : next_connect()(descriptor, address, size);
}
OWN_CALL ssize_t send(int descriptor, const void* bytes, std::size_t size, int flags) {
    return testing_support::systemCallFails(SystemCall::Send, descriptor) ? -1
                                                                          : next_send()(descriptor, bytes, size, flags);
}
OWN_CALL ssize_t recv(int descriptor, void* bytes, std::size_t size, int flags) {
    return testing_support::systemCallFails(SystemCall::Receive, descriptor)
               ? -1
               : next_recv()(descriptor, bytes, size, flags);
}
OWN_CALL ssize_t sendmsg(int descriptor, const ::msghdr* message, int flags) {
    return testing_support::systemCallFails(SystemCall::SendMessage, descriptor)
               ? -1
               : next_sendmsg()(descriptor, message, flags);
}
OWN_CALL ssize_t recvmsg(int descriptor, ::msghdr* message, int flags) {
    return testing_support::systemCallFails(SystemCall::ReceiveMessage, descriptor)
               ? -1
               : next_recvmsg()(descriptor, message, flags);
}
OWN_CALL int setsockopt(int descriptor, int level, int option, const void* value, ::socklen_t size) noexcept {
    return testing_support::systemCallFails(SystemCall::SetOption, descriptor)
               ? -1
               : next_setsockopt()(descriptor, level, option, value, size);
}
OWN_CALL int close(int descriptor) {
    return testing_support::systemCallFails(SystemCall::Close, descriptor) ? -1 : next_close()(descriptor);
}
OWN_CALL int pipe2(int* ends, int flags) noexcept {
    return testing_support::systemCallFails(SystemCall::Pipe, -1) ? -1 : next_pipe2()(ends, flags);
}
OWN_CALL ::pid_t fork() noexcept { return testing_support::systemCallFails(SystemCall::Fork, -1) ? -1 : next_fork()(); }
