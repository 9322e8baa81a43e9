#include "system/socket/connection_listener.h"

#include <map>
#include <memory>
#include <mutex>
#include <utility>

namespace {

struct Listening {
    std::mutex mutex;
    std::shared_ptr<const seat::ConnectionListener> listener;
    std::map<int, std::string> paths; // of the descriptors that are connected
};

// Never destroyed: workers may connect while the process ends.
Listening& listening() {
    static auto* const all = new Listening;
    return *all;
}

} // namespace

void seat::setConnectionListener(ConnectionListener listener) {
    auto next = listener ? std::make_shared<const ConnectionListener>(std::move(listener)) : nullptr;
    const std::lock_guard lock(listening().mutex);
    listening().listener.swap(next);
}

void seat::tellOfConnection(int descriptor, const std::string& path) {
    {
        const std::lock_guard lock(listening().mutex);
        listening().paths.insert_or_assign(descriptor, path);
    }
    tellOfReply(descriptor, ConnectionEvent::Connected);
}

void seat::tellOfReply(int descriptor, ConnectionEvent event) {
    std::shared_ptr<const ConnectionListener> listener;
    std::string path;
    {
        const std::lock_guard lock(listening().mutex);
        const auto found = listening().paths.find(descriptor);
        if (found == listening().paths.end()) return;
        path = found->second;
        listener = listening().listener;
    }
    if (listener) (*listener)(path, event);
}

void seat::forgetConnection(int descriptor) {
    const std::lock_guard lock(listening().mutex);
    listening().paths.erase(descriptor);
}
