#include "services/jvnd/SessionSignals.h"

#include <systemd/sd-bus.h>
#include <unistd.h>

namespace jvnd {

namespace {

// Questions that the bus has still to answer; more signals at once than this say nothing new.
constexpr std::size_t mostQuestions = 32;

constexpr const char* bus = "org.freedesktop.DBus";

} // namespace

SessionSignals::SessionSignals(services::EventLoop& loop, std::vector<std::string> names,
                               std::function<void(const std::string& name)> heard)
    : m_names(std::move(names)), m_heard(std::move(heard)),
      m_bus(
          loop, services::Bus::Which::Session, [this] { listen(); },
          [this] {
              m_matches.clear();
              m_questions.clear();
          }) {}

void SessionSignals::listen() {
    for (const auto& name : m_names) {
        const auto dot = name.rfind('.');
        m_matches.push_back(
            m_bus.match("type='signal',interface='" + name.substr(0, dot) + "',member='" + name.substr(dot + 1) + "'",
                        received, this));
    }
}

int SessionSignals::received(::sd_bus_message* message, void* self, ::sd_bus_error*) {
    const char* const interface = ::sd_bus_message_get_interface(message);
    const char* const member = ::sd_bus_message_get_member(message);
    const char* const sender = ::sd_bus_message_get_sender(message);
    if (interface && member && sender)
        static_cast<SessionSignals*>(self)->ask(std::string(interface) + "." + member, sender);
    return 0;
}

void SessionSignals::ask(const std::string& name, const char* sender) {
    if (m_questions.size() >= mostQuestions) return;
    auto question = m_bus.method(bus, "/org/freedesktop/DBus", bus, "GetConnectionUnixUser");
    if (question) ::sd_bus_message_append(question.get(), "s", sender);
    const auto number = ++m_lastQuestion;
    m_questions[number] = m_bus.call(std::move(question), [this, number, name](const services::Bus::Reply& reply) {
        answered(number, name, reply);
    });
}

void SessionSignals::answered(std::uint64_t question, const std::string& name, const services::Bus::Reply& reply) {
    std::uint32_t user = 0;
    const bool isKnown = reply.message && ::sd_bus_message_read(reply.message, "u", &user) >= 0;
    const auto ended = m_questions.extract(question); // it holds the name
    if (isKnown && (user == ::geteuid() || user == 0)) m_heard(name);
}

} // namespace jvnd
