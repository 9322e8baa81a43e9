#pragma once

#include <cerrno>
#include <csignal>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

namespace seat {

// As fork(), but in the child all signals are blocked: no handler of ours may run there.
inline ::pid_t forkChild() {
    ::sigset_t all;
    ::sigset_t before;
    ::sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, &before);
    const ::pid_t child = ::fork();
    const int error = errno;
    if (child != 0) ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
    errno = error;
    return child;
}

// Waits for the end of a child.
inline void reap(::pid_t child) {
    while (::waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
    }
}

} // namespace seat
