#include "system/socket/connection_listener.h"

#include <memory>
#include <mutex>
#include <utility>

namespace {

struct Listening {
    std::mutex mutex;
    std::shared_ptr<const std::function<void(const std::string&)>> listener;
};

// Never destroyed: workers may connect while the process ends.
Listening& listening() {
    static auto* const all = new Listening;
    return *all;
}

} // namespace

void seat::setConnectionListener(std::function<void(const std::string&)> listener) {
    auto next =
        listener ? std::make_shared<const std::function<void(const std::string&)>>(std::move(listener)) : nullptr;
    const std::lock_guard lock(listening().mutex);
    listening().listener.swap(next);
}

void seat::tellOfConnection(const std::string& path) {
    std::shared_ptr<const std::function<void(const std::string&)>> listener;
    {
        const std::lock_guard lock(listening().mutex);
        listener = listening().listener;
    }
    if (listener) (*listener)(path);
}
