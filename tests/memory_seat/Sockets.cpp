#include "tests/memory_seat/Sockets.h"

#include "platform/log.h"
#include "platform/socket.h"
#include "tests/support/SystemCalls.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <map>

namespace memory_seat {

namespace {
constexpr std::size_t backlog = 128; // connections that nobody has accepted yet; past them connecting fails at once
} // namespace

bool Pipe::write(const void* bytes, std::size_t count) {
    const std::lock_guard lock(m_mutex);
    if (m_readerGone || m_writerGone) return false;
    const auto* const from = static_cast<const std::uint8_t*>(bytes);
    m_bytes.insert(m_bytes.end(), from, from + count);
    m_changed.notify_all();
    return true;
}

std::ptrdiff_t Pipe::read(void* bytes, std::size_t count, double timeoutSeconds) {
    std::unique_lock lock(m_mutex);
    const auto ready = [this] { return !m_bytes.empty() || m_writerGone || m_readerGone; };
    if (timeoutSeconds > 0) {
        if (!m_changed.wait_for(lock, std::chrono::duration<double>(timeoutSeconds), ready)) return -1;
    } else {
        m_changed.wait(lock, ready);
    }
    const auto taken = static_cast<std::ptrdiff_t>(std::min(count, m_bytes.size()));
    std::copy_n(m_bytes.begin(), taken, static_cast<std::uint8_t*>(bytes));
    m_bytes.erase(m_bytes.begin(), m_bytes.begin() + taken);
    return taken;
}

void Pipe::endWriting() {
    const std::lock_guard lock(m_mutex);
    m_writerGone = true;
    m_changed.notify_all();
}

void Pipe::endReading() {
    const std::lock_guard lock(m_mutex);
    m_readerGone = true;
    m_changed.notify_all();
}

namespace {
std::atomic<std::size_t> acceptedEnds = 0;
} // namespace

void Connection::closeServerEnd() {
    toClient.endWriting();
    toServer.endReading();
    --acceptedEnds;
}

struct Listener::State {
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<std::shared_ptr<Connection>> waiting;
    bool stopped = false;

    // Never destroyed: threads may connect while the process ends.
    struct Places {
        std::mutex mutex;
        std::map<std::string, std::weak_ptr<State>> all;
    };
    static Places& places() {
        static auto* const places = new Places;
        return *places;
    }
};

Listener::Listener(const std::string& path) : m_path(path), m_state(std::make_shared<State>()) {
    auto& places = State::places();
    const std::lock_guard lock(places.mutex);
    places.all[path] = m_state;
}

Listener::~Listener() {
    auto& places = State::places();
    const std::lock_guard lock(places.mutex);
    places.all.erase(m_path);
}

std::shared_ptr<Connection> Listener::accept() {
    std::unique_lock lock(m_state->mutex);
    m_state->changed.wait(lock, [this] { return !m_state->waiting.empty() || m_state->stopped; });
    if (m_state->stopped) return nullptr;
    auto connection = m_state->waiting.front();
    m_state->waiting.pop_front();
    ++acceptedEnds;
    return connection;
}

void Listener::stop() {
    const std::lock_guard lock(m_state->mutex);
    m_state->stopped = true;
    m_state->changed.notify_all();
}

std::shared_ptr<Connection> connectTo(const std::string& path) {
    std::shared_ptr<Listener::State> listener;
    {
        auto& places = Listener::State::places();
        const std::lock_guard lock(places.mutex);
        if (const auto found = places.all.find(path); found != places.all.end()) listener = found->second.lock();
    }
    if (!listener) return nullptr;
    auto connection = std::make_shared<Connection>();
    const std::lock_guard lock(listener->mutex);
    if (listener->waiting.size() >= backlog) return nullptr;
    listener->waiting.push_back(connection);
    listener->changed.notify_all();
    return connection;
}

} // namespace memory_seat

namespace {

struct Descriptor {
    std::shared_ptr<memory_seat::Connection> connection; // nullptr until it is connected
    double timeout = 0;
};

struct Descriptors {
    std::mutex mutex;
    std::map<int, Descriptor> open;
    int last = 100;

    static Descriptors& shared() {
        static auto* const all = new Descriptors;
        return *all;
    }
};

// Nothing for a descriptor that is not open.
std::shared_ptr<Descriptor> find(int descriptor) {
    auto& all = Descriptors::shared();
    const std::lock_guard lock(all.mutex);
    const auto found = all.open.find(descriptor);
    return found == all.open.end() ? nullptr : std::make_shared<Descriptor>(found->second);
}

int failed(int errorNumber) {
    errno = errorNumber;
    return -1;
}

} // namespace

std::size_t memory_seat::openDescriptors() {
    auto& all = Descriptors::shared();
    const std::lock_guard lock(all.mutex);
    return all.open.size() + acceptedEnds;
}

using testing_support::SystemCall;
using testing_support::systemCallFails;

int platform::socket(int domain, int type, int protocol) {
    if (systemCallFails(SystemCall::Socket, -1)) return -1;
    if (domain != AF_UNIX_FAMILY || type != SOCK_STREAM_TYPE || protocol != 0) return failed(EINVAL);
    auto& all = Descriptors::shared();
    const std::lock_guard lock(all.mutex);
    all.open[++all.last] = {};
    return all.last;
}

int platform::connect(int descriptor, const sockaddr_un* address, std::size_t size) {
    if (systemCallFails(SystemCall::Connect, descriptor)) return -1;
    if (!address || size != sizeof *address || address->sun_family != AF_UNIX_FAMILY) return failed(EINVAL);
    const std::string path(address->sun_path,
                           std::find(address->sun_path, std::end(address->sun_path), '\0') - address->sun_path);
    auto connection = memory_seat::connectTo(path);
    auto& all = Descriptors::shared();
    const std::lock_guard lock(all.mutex);
    const auto found = all.open.find(descriptor);
    if (found == all.open.end()) return failed(EBADF);
    if (!connection) {
        NSLog("connect %s: nobody listens there", path.c_str());
        return failed(ENOENT);
    }
    found->second.connection = std::move(connection);
    return 0;
}

std::ptrdiff_t platform::send(int descriptor, const void* bytes, std::size_t length, int) {
    if (systemCallFails(SystemCall::Send, descriptor)) return -1;
    const auto found = find(descriptor);
    if (!found || !found->connection || !found->connection->toServer.write(bytes, length)) return failed(EPIPE);
    return static_cast<std::ptrdiff_t>(length);
}

std::ptrdiff_t platform::recv(int descriptor, void* bytes, std::size_t length, int flags) {
    if (systemCallFails(SystemCall::Receive, descriptor)) return -1;
    const auto found = find(descriptor);
    if (!found || !found->connection) return failed(ENOTCONN);
    auto& pipe = found->connection->toClient;
    auto* const into = static_cast<std::uint8_t*>(bytes);
    // The time-out counts from the call for all of it.
    const auto start = std::chrono::steady_clock::now();
    std::size_t received = 0;
    for (;;) {
        double left = found->timeout;
        if (left > 0) {
            left -= std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
            if (left <= 0) left = 1e-9;
        }
        const std::ptrdiff_t count = pipe.read(into + received, length - received, left);
        if (count <= 0) return received > 0 ? static_cast<std::ptrdiff_t>(received) : count == 0 ? 0 : failed(EAGAIN);
        received += static_cast<std::size_t>(count);
        if (received == length || !(flags & MSG_WAITALL_FLAG)) return static_cast<std::ptrdiff_t>(received);
    }
}

int platform::setsockopt(int descriptor, int level, int option, const void* value, std::size_t size) {
    if (systemCallFails(SystemCall::SetOption, descriptor)) return -1;
    timeval time;
    if (level != SOL_SOCKET_LEVEL || option != SO_RCVTIMEO_OPTION || !value || size != sizeof time)
        return failed(EINVAL);
    std::memcpy(&time, value, sizeof time);
    auto& all = Descriptors::shared();
    const std::lock_guard lock(all.mutex);
    const auto found = all.open.find(descriptor);
    if (found == all.open.end()) return failed(EBADF);
    found->second.timeout = static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
    return 0;
}

int platform::close(int descriptor) {
    if (systemCallFails(SystemCall::Close, descriptor)) return -1;
    auto& all = Descriptors::shared();
    const std::lock_guard lock(all.mutex);
    const auto found = all.open.find(descriptor);
    if (found == all.open.end()) return failed(EBADF);
    if (const auto& connection = found->second.connection) {
        connection->toServer.endWriting();
        connection->toClient.endReading();
    }
    all.open.erase(found);
    return 0;
}
