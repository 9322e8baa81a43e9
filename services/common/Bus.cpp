#include "services/common/Bus.h"

#include "services/common/log.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <utility>

namespace services {
namespace {

// Until the next try; twice as long each time, so that a bus that will never be there costs nothing.
constexpr std::chrono::seconds firstRetry{1};
constexpr std::chrono::seconds lastRetry{64};
constexpr const char* systemAddress = "unix:path=/run/dbus/system_bus_socket";

std::string addressOf(Bus::Which which) {
    const bool isSystem = which == Bus::Which::System;
    const char* const given = std::getenv(isSystem ? "DBUS_SYSTEM_BUS_ADDRESS" : "DBUS_SESSION_BUS_ADDRESS");
    if (given && *given) return given;
    if (isSystem) return systemAddress;
    const char* const folder = std::getenv("XDG_RUNTIME_DIR");
    return folder && *folder ? std::string("unix:path=") + folder + "/bus" : "";
}

// Of a network nobody can say who is at the other end, and what an address starts would be left behind.
bool isOnThisComputer(std::string_view addresses) {
    while (!addresses.empty()) {
        if (!addresses.starts_with("unix:")) return false;
        const auto end = addresses.find(';');
        addresses.remove_prefix(end == std::string_view::npos ? addresses.size() : end + 1);
    }
    return true;
}

const char* nameOf(Bus::Which which) { return which == Bus::Which::System ? "system bus" : "session bus"; }

} // namespace

// A call that was sent. It is kept until its answer has come, also when nobody wants to hear it any more.
struct Bus::Pending {
    Bus* bus = nullptr;
    Replied replied;
    Slot slot;
    EventLoop::Source failure; // the call could not be sent: its answer is on the way
    PendingList::iterator place;
    bool isWanted = true; // its handle lives, or it was sent without one
};

class Bus::Call final : public EventLoop::Handle {
public:
    explicit Call(const std::shared_ptr<Pending>& pending) : m_pending(pending) {}
    ~Call() override {
        const auto pending = m_pending.lock();
        if (!pending) return;
        pending->replied = nullptr;
        pending->isWanted = false;
        pending->bus->checkQuiet();
    }
    // It is to be answered without the handle, too.
    void letGo() { m_pending.reset(); }
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;

private:
    std::weak_ptr<Pending> m_pending;
};

Bus::Bus(EventLoop& loop, Which which, std::function<void()> up, std::function<void()> down)
    : m_loop(loop), m_which(which), m_up(std::move(up)), m_down(std::move(down)), m_retryDelay(firstRetry) {
    open();
}

Bus::~Bus() {
    m_pending.clear();
    m_connectedSlot.reset();
    m_disconnectedSlot.reset();
    ::sd_bus_close_unref(m_bus);
}

void Bus::open() {
    m_retry.reset();
    const std::string address = addressOf(m_which);
    if (address.empty()) return log("%s: there is none in this environment", nameOf(m_which));
    if (!isOnThisComputer(address))
        return log("%s: %s is no socket of this computer's", nameOf(m_which), address.c_str());
    ::sd_bus_slot* connectedSlot = nullptr;
    ::sd_bus_slot* disconnectedSlot = nullptr;
    int result = ::sd_bus_new(&m_bus);
    if (result >= 0) result = ::sd_bus_set_address(m_bus, address.c_str());
    if (result >= 0) result = ::sd_bus_set_bus_client(m_bus, 1);
    if (result >= 0) result = ::sd_bus_set_watch_bind(m_bus, 1);
    if (result >= 0) result = ::sd_bus_set_connected_signal(m_bus, 1);
    if (result >= 0)
        result = ::sd_bus_match_signal(m_bus, &connectedSlot, "org.freedesktop.DBus.Local", nullptr,
                                       "org.freedesktop.DBus.Local", "Connected", connected, this);
    m_connectedSlot.reset(connectedSlot);
    if (result >= 0)
        result = ::sd_bus_match_signal(m_bus, &disconnectedSlot, "org.freedesktop.DBus.Local", nullptr,
                                       "org.freedesktop.DBus.Local", "Disconnected", disconnected, this);
    m_disconnectedSlot.reset(disconnectedSlot);
    if (result >= 0) result = ::sd_bus_start(m_bus);
    if (result >= 0) result = ::sd_bus_attach_event(m_bus, m_loop.raw(), SD_EVENT_PRIORITY_NORMAL);
    if (result < 0) lost(std::strerror(-result));
}

// Closes what there is and tries again a little later.
void Bus::lost(const std::string& reason) {
    log("%s: %s", nameOf(m_which), reason.c_str());
    const bool wasUp = std::exchange(m_isUp, false);
    auto* const bus = std::exchange(m_bus, nullptr); // what is asked from now on fails
    m_connectedSlot.reset();
    m_disconnectedSlot.reset();
    for (const PendingList pending = m_pending; const auto& call : pending) {
        call->slot.reset();
        reply(*call, {nullptr, SD_BUS_ERROR_DISCONNECTED, reason});
    }
    if (wasUp && m_down) m_down();
    ::sd_bus_close_unref(bus);
    m_retry = m_loop.after(m_retryDelay, [this] { open(); });
    m_retryDelay = std::min(2 * m_retryDelay, lastRetry);
}

int Bus::connected(::sd_bus_message*, void* self, ::sd_bus_error*) {
    auto& bus = *static_cast<Bus*>(self);
    bus.m_isUp = true;
    bus.m_retryDelay = firstRetry;
    if (bus.m_up) bus.m_up();
    return 0;
}

int Bus::disconnected(::sd_bus_message*, void* self, ::sd_bus_error*) {
    auto& bus = *static_cast<Bus*>(self);
    // The library is still at work on the connection.
    bus.m_retry = bus.m_loop.soon([&bus] { bus.lost("the connection has ended"); });
    return 0;
}

Message Bus::method(const char* destination, const char* path, const char* interface, const char* member) const {
    ::sd_bus_message* message = nullptr;
    if (m_bus) ::sd_bus_message_new_method_call(m_bus, &message, destination, path, interface, member);
    return Message(message);
}

EventLoop::Source Bus::call(Message message, Replied heard) {
    const auto pending = std::make_shared<Pending>();
    pending->bus = this;
    pending->replied = std::move(heard);
    pending->place = m_pending.insert(m_pending.end(), pending);
    ::sd_bus_slot* slot = nullptr;
    int result = -ENOTCONN;
    if (m_bus && message) result = ::sd_bus_call_async(m_bus, &slot, message.get(), replied, pending.get(), UINT64_MAX);
    pending->slot.reset(slot);
    if (result < 0)
        pending->failure = m_loop.soon([this, &call = *pending, result] {
            reply(call, {nullptr, SD_BUS_ERROR_DISCONNECTED, std::strerror(-result)});
        });
    return std::make_unique<Call>(pending);
}

void Bus::send(Message message) {
    const auto handle = call(std::move(message), {});
    static_cast<Call&>(*handle).letGo();
}

int Bus::replied(::sd_bus_message* message, void* data, ::sd_bus_error*) {
    auto& pending = *static_cast<Pending*>(data);
    if (const auto* const error = ::sd_bus_message_get_error(message))
        pending.bus->reply(pending, {nullptr, error->name ? error->name : "", error->message ? error->message : ""});
    else
        pending.bus->reply(pending, {message, "", ""});
    return 0;
}

void Bus::reply(Pending& pending, const Reply& reply) {
    const auto kept = *pending.place;
    const auto heard = std::move(kept->replied);
    m_pending.erase(kept->place);
    kept->replied = nullptr;
    checkQuiet();
    if (heard) heard(reply);
}

Slot Bus::match(const std::string& rule, ::sd_bus_message_handler_t handler, void* data) {
    ::sd_bus_slot* slot = nullptr;
    const int result = m_bus ? ::sd_bus_add_match_async(m_bus, &slot, rule.c_str(), handler, nullptr, data) : -ENOTCONN;
    if (result < 0) log("%s: listening: %s", nameOf(m_which), std::strerror(-result));
    return Slot(slot);
}

void Bus::whenQuiet(std::function<void()> done) {
    m_quiet = std::move(done);
    checkQuiet();
}

void Bus::checkQuiet() {
    const auto isQuiet = [this] {
        return std::none_of(m_pending.begin(), m_pending.end(), [](const auto& call) { return call->isWanted; });
    };
    if (!m_quiet || !isQuiet()) return;
    // Whoever heard the last answer may have more to ask.
    m_tellQuiet = m_loop.soon([this, isQuiet] {
        if (isQuiet() && m_quiet) std::exchange(m_quiet, nullptr)();
    });
}

} // namespace services
