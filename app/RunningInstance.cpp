#include "app/RunningInstance.h"

#include "platform/log.h"
#include "system/files/uninterrupted.h"
#include "system/socket/address.h"

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace {

constexpr int answerMilliseconds = 1000;
constexpr std::size_t longestMessage = 8192;
constexpr std::size_t mostCallers = 8;
constexpr int kind = SOCK_SEQPACKET | SOCK_CLOEXEC;
constexpr char raised = 'r'; // the answer; any other is a refusal

std::string socketPath(const std::string& root) { return root + "/.window"; }

// The folder itself is what is locked: no file is left behind.
seat::Descriptor openLock(const std::string& root) {
    return seat::Descriptor(::open(root.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

// Held while somebody finds out whether there is one, and becomes it. One that stands still meanwhile is not waited for
// longer than it may ask.
seat::Descriptor lockedWithin(const std::string& root, std::chrono::milliseconds timeout) {
    seat::Descriptor lock = openLock(root);
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    while (lock && ::flock(lock.get(), LOCK_EX | LOCK_NB) != 0 && std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    return lock;
}

ino_t inodeOf(const std::string& path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0 ? status.st_ino : 0;
}

// What the desktop's launcher gave this program to show that a user wants to see its window.
std::string activationToken() {
    for (const char* const name : {"XDG_ACTIVATION_TOKEN", "DESKTOP_STARTUP_ID"})
        if (const char* const token = std::getenv(name); token && *token) return token;
    return {};
}

enum class Answer { NobodyThere, Raised, Refused, Silent };

Answer ask(const std::string& root, const std::string& bundle) {
    const seat::Descriptor peer(::socket(AF_UNIX, kind | SOCK_NONBLOCK, 0));
    if (!peer || seat::connectToPath(peer.get(), socketPath(root)) != 0) return Answer::NobodyThere;
    if (!seat::peerIsTrusted(peer.get())) return Answer::Refused;
    const std::string message = bundle + '\0' + activationToken();
    if (::send(peer.get(), message.data(), message.size(), MSG_NOSIGNAL) < 0) return Answer::Silent;
    ::pollfd entry{peer.get(), POLLIN, 0};
    if (seat::uninterrupted([&] { return ::poll(&entry, 1, answerMilliseconds); }) != 1) return Answer::Silent;
    char answer = 0;
    if (::recv(peer.get(), &answer, 1, 0) != 1) return Answer::NobodyThere; // it has just ended
    return answer == raised ? Answer::Raised : Answer::Refused;
}

} // namespace

namespace app {

std::unique_ptr<RunningInstance> RunningInstance::start(const std::string& root, const std::string& bundle) {
    const seat::Descriptor lock = lockedWithin(root, std::chrono::milliseconds(2 * answerMilliseconds));
    const Answer answer = ask(root, bundle);
    if (answer == Answer::Raised) return nullptr;
    auto instance = std::unique_ptr<RunningInstance>(new RunningInstance(root, bundle));
    if (answer == Answer::Silent) NSLog("raising the window that shows %s: its program does not answer", root.c_str());
    if (answer != Answer::NobodyThere) return instance;

    seat::Descriptor listener(::socket(AF_UNIX, kind | SOCK_NONBLOCK, 0));
    ::unlink(socketPath(root).c_str()); // of one that was killed
    int number = listener ? seat::bindToPath(listener.get(), socketPath(root)) : errno;
    if (number == 0 && ::listen(listener.get(), mostCallers) != 0) number = errno;
    if (number == 0)
        instance->listen(std::move(listener));
    else
        NSLog("listening for another start with %s: %s", root.c_str(), std::strerror(number));
    return instance;
}

RunningInstance::RunningInstance(std::string root, std::string bundle)
    : m_root(std::move(root)), m_bundle(std::move(bundle)) {}

RunningInstance::~RunningInstance() {
    seat::removeSource(m_listening);
    for (const auto& [number, caller] : m_callers) seat::removeSource(caller.source);
    m_callers.clear();
    if (!m_listener) return;
    m_listener.reset(); // whoever waits to be heard sees that nobody is there
    const seat::Descriptor lock = openLock(m_root);
    // One that starts at this moment takes the socket's place by itself.
    if (lock && ::flock(lock.get(), LOCK_EX | LOCK_NB) == 0 && inodeOf(socketPath(m_root)) == m_inode)
        ::unlink(socketPath(m_root).c_str());
}

void RunningInstance::listen(seat::Descriptor listener) {
    m_listener = std::move(listener);
    m_inode = inodeOf(socketPath(m_root));
}

void RunningInstance::setRaiseHandler(std::function<void(const std::string& token)> raise) {
    m_raise = std::move(raise);
    seat::removeSource(std::exchange(m_listening, 0));
    if (m_raise && m_listener) m_listening = seat::addReadableSource(m_listener.get(), [this] { accept(); });
}

void RunningInstance::accept() {
    Caller caller{seat::Descriptor(::accept4(m_listener.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK))};
    if (!caller.socket || m_callers.size() == mostCallers || !seat::peerIsTrusted(caller.socket.get())) return;
    const int number = caller.socket.get();
    caller.source = seat::addReadableSource(number, [this, number] { hear(number); });
    m_callers.emplace(number, std::move(caller));
}

void RunningInstance::hear(int number) {
    const auto found = m_callers.find(number);
    if (found == m_callers.end()) return;
    std::string message(longestMessage, '\0');
    const auto size = ::recv(number, message.data(), message.size(), 0);
    if (size < 0 && (errno == EAGAIN || errno == EINTR)) return;
    const Caller caller = std::move(found->second);
    m_callers.erase(found);
    seat::removeSource(caller.source);
    if (size <= 0) return;
    message.resize(static_cast<std::size_t>(size));
    const auto end = message.find('\0');
    // Whoever wants another page gets a window of its own.
    const bool isOurs = end != std::string::npos && message.compare(0, end, m_bundle) == 0;
    const char answer = isOurs ? raised : 'n';
    ::send(number, &answer, 1, MSG_NOSIGNAL);
    if (isOurs && m_raise) m_raise(message.substr(end + 1));
}

} // namespace app
