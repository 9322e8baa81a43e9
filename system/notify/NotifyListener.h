#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace seat {

// Hears a notification while it lives: of another program over the session bus, and of this process, with or without a
// bus; or of this process alone. Main thread; what this process posts is heard in the order of posting, later than
// notify_post returns.
class NotifyListener {
public:
    enum class From { Anyone, ThisProcess };

    NotifyListener(const std::string& name, std::function<void()> heard, From from = From::Anyone);
    ~NotifyListener();
    NotifyListener(const NotifyListener&) = delete;
    NotifyListener& operator=(const NotifyListener&) = delete;

private:
    std::shared_ptr<std::function<void()>> m_heard; // shared with a delivery that is under way
    std::string m_name;
    std::uint64_t m_signal = 0; // on the session bus
};

// Delivers to the listeners of this process. Main thread.
void deliverNotification(const std::string& name);

} // namespace seat
