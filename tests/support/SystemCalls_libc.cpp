// The C library's calls, each asking first whether it is to fail.

#include "tests/support/SystemCalls.h"

#include <cstdarg>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

using testing_support::SystemCall;

void testing_support::useOwnCalls() {}

// A program's own definition of a library's function stands before the library's. A sanitizer watches some of them,
// too, and then has the next word.
// NOLINTBEGIN(bugprone-macro-parentheses): parameters are no value
#define NEXT_CALL(result, name, parameters)                                                                            \
    extern "C" [[gnu::weak]] result __interceptor_##name parameters;                                                   \
    static auto* next_##name() {                                                                                       \
        static auto* const next = reinterpret_cast<result(*) parameters>(                                              \
            __interceptor_##name ? reinterpret_cast<void*>(&__interceptor_##name) : ::dlsym(RTLD_NEXT, #name));        \
        return next;                                                                                                   \
    }
// NOLINTEND(bugprone-macro-parentheses)
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
NEXT_CALL(int, open, (const char*, int, ::mode_t))
NEXT_CALL(int, openat, (int, const char*, int, ::mode_t))
NEXT_CALL(ssize_t, read, (int, void*, std::size_t))
NEXT_CALL(ssize_t, write, (int, const void*, std::size_t))
NEXT_CALL(int, flock, (int, int))
NEXT_CALL(int, fchmod, (int, ::mode_t))
NEXT_CALL(int, fchown, (int, ::uid_t, ::gid_t))
NEXT_CALL(int, renameat2, (int, const char*, int, const char*, unsigned))
NEXT_CALL(int, unlinkat, (int, const char*, int))

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

// The mode is there only when a file may be made.
#define MODE_AFTER(flags)                                                                                              \
    ::mode_t mode = 0;                                                                                                 \
    if ((flags)&O_CREAT || ((flags)&O_TMPFILE) == O_TMPFILE) {                                                         \
        std::va_list arguments;                                                                                        \
        va_start(arguments, flags);                                                                                    \
        mode = va_arg(arguments, ::mode_t);                                                                            \
        va_end(arguments);                                                                                             \
    }
OWN_CALL int open(const char* path, int flags, ...) {
    MODE_AFTER(flags)
    return testing_support::systemCallFails(SystemCall::Open, -1) ? -1 : next_open()(path, flags, mode);
}
OWN_CALL int openat(int folder, const char* path, int flags, ...) {
    MODE_AFTER(flags)
    return testing_support::systemCallFails(SystemCall::Open, -1) ? -1 : next_openat()(folder, path, flags, mode);
}
OWN_CALL ssize_t read(int descriptor, void* bytes, std::size_t size) {
    return testing_support::systemCallFails(SystemCall::Read, descriptor) ? -1 : next_read()(descriptor, bytes, size);
}
OWN_CALL ssize_t write(int descriptor, const void* bytes, std::size_t size) {
    return testing_support::systemCallFails(SystemCall::Write, descriptor) ? -1 : next_write()(descriptor, bytes, size);
}
OWN_CALL int flock(int descriptor, int operation) noexcept {
    return testing_support::systemCallFails(SystemCall::Lock, descriptor) ? -1 : next_flock()(descriptor, operation);
}
OWN_CALL int fchmod(int descriptor, ::mode_t mode) noexcept {
    return testing_support::systemCallFails(SystemCall::ChangeMode, descriptor) ? -1 : next_fchmod()(descriptor, mode);
}
OWN_CALL int fchown(int descriptor, ::uid_t user, ::gid_t group) noexcept {
    return testing_support::systemCallFails(SystemCall::ChangeOwner, descriptor)
               ? -1
               : next_fchown()(descriptor, user, group);
}
OWN_CALL int renameat2(int fromFolder, const char* from, int toFolder, const char* to, unsigned flags) noexcept {
    return testing_support::systemCallFails(SystemCall::Rename, -1)
               ? -1
               : next_renameat2()(fromFolder, from, toFolder, to, flags);
}
OWN_CALL int unlinkat(int folder, const char* path, int flags) noexcept {
    return testing_support::systemCallFails(SystemCall::Unlink, -1) ? -1 : next_unlinkat()(folder, path, flags);
}
