#pragma once

#include "kit/runtime/LineLimit.h"
#include "system/bus/EventSet.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

struct DBusMessage;

namespace seat {

// Which of the programs on the bus are listened to: those of our own user and of root. The bus is asked once about
// each; what it sends meanwhile waits, and keeps its order. Main thread.
class BusSenders {
public:
    // Asks for the user of the connection with that unique name; the answer is nullopt when it has gone.
    using Ask =
        std::function<void(const std::string& sender, std::function<void(std::optional<std::uint32_t> user)> answered)>;
    using Take = std::function<void(DBusMessage& message)>;

    // `hear` gets what is listened to, `refuse` what is not.
    BusSenders(EventSet& events, Ask ask, Take hear, Take refuse);
    ~BusSenders();
    BusSenders(const BusSenders&) = delete;
    BusSenders& operator=(const BusSenders&) = delete;

    // Ends at one of the two, now or later; nowhere when too much waits.
    void take(const std::string& sender, DBusMessage& message);
    // The connection is over: what waits is dropped, and nobody is known any more.
    void forget();

private:
    struct Unref {
        void operator()(DBusMessage* message) const;
    };
    using Held = std::unique_ptr<DBusMessage, Unref>;
    enum class Standing { Asked, Trusted, Refused };
    struct Sender {
        Standing standing = Standing::Asked;
        std::deque<Held> held;
    };

    void answered(const std::string& name, std::optional<std::uint32_t> user);
    void deliver();
    void forgetSettled();

    EventSet& m_events;
    Ask m_ask;
    Take m_hear;
    Take m_refuse;
    std::map<std::string, Sender> m_senders;
    std::size_t m_held = 0;
    EventSet::Token m_rest = 0; // delivers what one turn of the run loop had no time for
    LineLimit m_refusals;
    LineLimit m_overflows;
};

} // namespace seat
