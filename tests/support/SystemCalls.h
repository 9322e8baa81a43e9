#pragma once

#include <functional>

namespace testing_support {

enum class SystemCall {
    Socket,
    Connect,
    Send,
    Receive,
    SendMessage, // the bus library sends and receives by these two
    ReceiveMessage,
    SetOption,
    Close,
    Pipe,
    Fork,
    Open,
    Read,
    Write,
    Lock, // of a file
    ChangeMode,
    ChangeOwner,
    Flush,
    Rename,
    Unlink,
};
inline constexpr int systemCallCount = 19;

// Stands between this process and the kernel: whatever library makes the call, it is counted, watched, and made to fail
// as a system in trouble would. One at a time; any thread may make calls meanwhile. Calls of threads that play a peer
// (PeerThread) go through untouched.
class SystemCalls {
public:
    SystemCalls();
    ~SystemCalls(); // what was asked for ends here
    SystemCalls(const SystemCalls&) = delete;
    SystemCalls& operator=(const SystemCalls&) = delete;

    // The `n`th call from now on, the next one being the first, and those after it up to `times`, give -1 with this
    // error number and do nothing else.
    void failAt(SystemCall call, int n, int errorNumber, int times = 1);
    void fail(SystemCall call, int errorNumber, int times = 1) { failAt(call, 1, errorNumber, times); }
    // Called on the caller's thread before each call that is made, with its descriptor (-1 where it has none yet).
    void before(SystemCall call, std::function<void(int descriptor)> watch);
    // Calls since the last failAt() of this kind, failed or not.
    int count(SystemCall call) const;
    void clear();
};

// Asked by each call before it is made: true, with errno set, when it is to fail.
bool systemCallFails(SystemCall call, int descriptor);

// The files that define the library's functions anew. Called so that a linker takes them along.
void useOwnCalls();
void useOwnFlushes();

// Marks its thread as a peer's for as long as it lives.
class PeerThread {
public:
    PeerThread() { isOne = true; }
    ~PeerThread() { isOne = false; }
    PeerThread(const PeerThread&) = delete;
    PeerThread& operator=(const PeerThread&) = delete;

    inline static thread_local bool isOne = false;
};

} // namespace testing_support
