#include "services/jvnd/Commands.h"

#include <algorithm>
#include <utility>

namespace jvnd {

namespace {

constexpr std::uint32_t stateConnected = 1;
// More Connects than this of one caller at once are not meant.
constexpr std::ptrdiff_t mostWaiting = 8;

bool hasPads(std::int64_t controllerType) {
    return controllerType >= JVNControllerTypePS3 && controllerType < JVNControllerTypeKeyboard;
}

} // namespace

Commands::Commands(Connector& connector, Actions actions) : m_connector(connector), m_actions(std::move(actions)) {
    m_connector.onEnded([this](Connector::Result result) { ended(result); });
}

Commands::~Commands() { m_connector.onEnded({}); }

CommandHandler::Then Commands::handle(Caller& caller, const JVNControlFrame& frame) {
    if (m_actions.trace) m_actions.trace(caller, frame, nullptr);
    switch (frame.command) {
    case JVNControlCommand::Connect:
        return connect(caller, frame);
    case JVNControlCommand::QueryConnection:
        return query(caller, frame);
    case JVNControlCommand::Disconnect:
        if (const auto target = storedTarget(); target || m_actions.settings().controllerType == JVNControllerTypePS3)
            m_connector.disconnect(target);
        return Then::GoOn;
    case JVNControlCommand::SetLEDColor:
        if (frame.controllerType == JVNControllerTypeDualShock4)
            m_actions.setColor({frame.payload[0], frame.payload[1], frame.payload[2]});
        return Then::GoOn;
    case JVNControlCommand::RestartDaemons:
        m_actions.restart();
        return Then::Close;
    case JVNControlCommand::EndSession:
    case JVNControlCommand::ConnectAccepted:
    case JVNControlCommand::ConnectRefused:
        break;
    }
    return Then::Close;
}

Connector::Target Commands::storedTarget() const {
    const auto& settings = m_actions.settings();
    return settings.controllerType == JVNControllerTypePS3 ? std::nullopt : settings.address;
}

CommandHandler::Then Commands::connect(Caller& caller, const JVNControlFrame& frame) {
    if (std::ranges::count(m_waiters, &caller, &Waiter::caller) >= mostWaiting) return Then::Close;
    const auto address = bluetooth::Address::fromBytes(std::span(frame.payload).first(JVNControlFrame::addressSize));
    const bool isNamed = address && *address != bluetooth::Address{};
    const bool isPS3 = frame.controllerType == JVNControllerTypePS3;
    if (!hasPads(frame.controllerType) || (!isPS3 && !isNamed)) {
        answer(caller, frame, ConnectFailure::UnknownDevice);
    } else if (m_connector.connect(isPS3 ? std::nullopt : address)) {
        m_waiters.push_back({&caller, frame});
    } else {
        answer(caller, frame, ConnectFailure::Busy);
    }
    return Then::GoOn;
}

void Commands::ended(Connector::Result result) {
    for (const auto& [caller, frame] : std::exchange(m_waiters, {})) answer(*caller, frame, result);
}

void Commands::answer(Caller& caller, const JVNControlFrame& frame, Connector::Result result) {
    if (result)
        reply(caller, frame, JVNControlCommand::ConnectRefused, static_cast<std::uint32_t>(*result));
    else
        reply(caller, frame, JVNControlCommand::ConnectAccepted, frame.controllerType);
}

// Without a reply the caller takes the end of the connection for "not connected".
CommandHandler::Then Commands::query(Caller& caller, const JVNControlFrame& frame) {
    const auto type = m_actions.settings().controllerType;
    const auto target = storedTarget();
    const bool isConnected =
        hasPads(type) && (target || type == JVNControllerTypePS3) && m_connector.isConnected(target);
    if (!isConnected && !m_connector.isConnecting()) return Then::Close;
    reply(caller, frame, JVNControlCommand::QueryConnection, isConnected ? stateConnected : JVNConnectionStateUnknown);
    return Then::GoOn;
}

void Commands::reply(Caller& caller, const JVNControlFrame& frame, JVNControlCommand command, std::uint32_t second) {
    JVNControlFrame answer;
    answer.command = command;
    answer.controllerType = second;
    if (m_actions.trace) m_actions.trace(caller, frame, &answer);
    caller.reply(answer);
}

void Commands::callerGone(Caller& caller) {
    const auto count = std::erase_if(m_waiters, [&caller](const Waiter& waiter) { return waiter.caller == &caller; });
    if (count > 0 && m_waiters.empty()) m_connector.cancel();
}

bool Commands::isWaiting(const Caller& caller) const {
    return std::ranges::find(m_waiters, &caller, &Waiter::caller) != m_waiters.end();
}

} // namespace jvnd
