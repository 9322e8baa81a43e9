#include "system/bus/RelayedConnection.h"

#include "platform/log.h"

#include <algorithm>
#include <dbus/dbus.h>
#include <unistd.h>

namespace {

using namespace std::chrono_literals;
using Clock = seat::RelayedConnection::Clock;

// Of our own greeting; the toolkit counts its calls from one.
constexpr std::uint32_t ownHello = 0xffffffff;
// Valid, and no bus gives it.
constexpr const char* nameOfOurs = ":0.0";
// What is slow is not missing yet.
constexpr auto timeToSaySo = 400ms;
constexpr std::size_t longestGreeting = 4096;
constexpr std::size_t longestMessage = 4u << 20;
constexpr std::size_t mostUnread = 4u << 20;
constexpr std::size_t mostCalls = 256;
constexpr int mostAskedAgain = 4; // of a peer that is late each time

const std::string theBus = DBUS_SERVICE_DBUS;

// Takes a line from the front, without its end.
std::optional<std::string> takeLine(std::string& text) {
    const auto end = text.find("\r\n");
    if (end == std::string::npos) return std::nullopt;
    std::string line = text.substr(0, end);
    text.erase(0, end + 2);
    return line;
}

enum class Stream { Whole, Incomplete, Invalid };

// Moves a message from the front of a stream.
Stream takeMessage(std::string& stream, std::string& message) {
    if (stream.empty()) return Stream::Incomplete;
    const auto known = std::min(stream.size(), longestMessage);
    const int needed = ::dbus_message_demarshal_bytes_needed(stream.data(), static_cast<int>(known));
    if (needed < 0 || static_cast<std::size_t>(needed) > longestMessage) return Stream::Invalid;
    if (needed == 0 || static_cast<std::size_t>(needed) > stream.size()) return Stream::Incomplete;
    message = stream.substr(0, static_cast<std::size_t>(needed));
    stream.erase(0, message.size());
    return Stream::Whole;
}

int typeOf(const std::string& message) { return message[1]; }

std::string userInHexadecimal() {
    static constexpr char digits[] = "0123456789abcdef";
    std::string text;
    for (const char c : std::to_string(::geteuid())) (text += digits[c >> 4]) += digits[c & 15];
    return text;
}

} // namespace

seat::RelayedConnection::RelayedConnection(Descriptor bus, std::string busName, RelayTimeouts timeouts,
                                           WithoutGreeting withoutGreeting, AddressChange changeAddress,
                                           const std::atomic<bool>& isAccessible)
    : m_timeouts(timeouts), m_withoutGreeting(withoutGreeting), m_bus(std::move(bus)), m_busName(std::move(busName)),
      m_changeAddress(std::move(changeAddress)), m_isAccessible(isAccessible), m_waiting(helloCall(ownHello)) {
    m_bus.toSend = std::string(1, '\0') + "AUTH EXTERNAL " + userInHexadecimal() + "\r\n";
}

void seat::RelayedConnection::attach(Descriptor toolkit) { m_toolkit = BufferedSocket(std::move(toolkit)); }

void seat::RelayedConnection::addEntries(std::vector<pollfd>& entries) const {
    for (const auto* const end : {&m_toolkit, &m_bus}) {
        const int in = end == &m_bus && isFull() ? 0 : POLLIN;
        entries.push_back({end->descriptor(), static_cast<short>(in | (end->toSend.empty() ? 0 : POLLOUT)), 0});
    }
}

std::optional<Clock::time_point> seat::RelayedConnection::deadline() const {
    std::optional<Clock::time_point> first;
    for (const auto& [serial, call] : m_calls)
        if (call.deadline && (!first || *call.deadline < *first)) first = call.deadline;
    for (const auto& [destination, silence] : m_silent)
        if (silence.sayAt && (!first || *silence.sayAt < *first)) first = silence.sayAt;
    return first;
}

bool seat::RelayedConnection::serve(Clock::time_point now) {
    if (isAttached() && (!m_toolkit.receive() || !takeFromToolkit(now))) return false;
    if (!m_busIsLost && !isFull()) {
        const bool isThere = m_bus.receive();
        takeFromBus();
        if (!isThere) loseBus("closed the connection");
    }
    answerOverdueCalls(now);
    sayWhoIsSilent(now);
    if (m_bus.toSend.size() > mostUnread) loseBus("reads nothing any more");
    if (!m_busIsLost && !m_bus.send()) loseBus("closed the connection");
    return !m_isRefused && (!isAttached() || m_toolkit.send());
}

// A toolkit that does not read is not sent more.
bool seat::RelayedConnection::isFull() const { return m_toolkit.toSend.size() > mostUnread; }

bool seat::RelayedConnection::takeFromToolkit(Clock::time_point now) {
    if (!m_toolkitIsGreeted) greetToolkit();
    if (!m_toolkitIsGreeted) return m_toolkit.received.size() < longestGreeting;
    std::string message;
    Stream stream;
    while ((stream = takeMessage(m_toolkit.received, message)) == Stream::Whole) {
        if (typeOf(message) == DBUS_MESSAGE_TYPE_METHOD_CALL && !noteCall(message, now)) continue;
        if (!m_busIsLost) (m_busIsGreeted ? m_bus.toSend : m_waiting) += message;
    }
    return stream == Stream::Incomplete;
}

// It is us who connects, so there is nothing to find out. Descriptors are not passed.
void seat::RelayedConnection::greetToolkit() {
    auto& text = m_toolkit.received;
    if (text.starts_with('\0')) text.erase(0, 1);
    while (const auto line = takeLine(text)) {
        if (line->starts_with("BEGIN")) {
            m_toolkitIsGreeted = true;
            return;
        }
        if (line->starts_with("AUTH EXTERNAL") || line->starts_with("DATA"))
            m_toolkit.toSend += "OK " + std::string(32, '0') + "\r\n";
        else
            m_toolkit.toSend += line->starts_with("AUTH") ? "REJECTED EXTERNAL\r\n" : "ERROR\r\n";
    }
}

void seat::RelayedConnection::greetBus() {
    const auto line = takeLine(m_bus.received);
    if (!line && m_bus.received.size() < longestGreeting) return;
    if (!line || !line->starts_with("OK ")) return loseBus("refuses us");
    m_busIsGreeted = true;
    m_bus.toSend += "BEGIN\r\n" + std::exchange(m_waiting, {});
}

void seat::RelayedConnection::takeFromBus() {
    if (!m_busIsGreeted) greetBus();
    std::string message;
    Stream stream = Stream::Incomplete;
    while (m_busIsGreeted && (stream = takeMessage(m_bus.received, message)) == Stream::Whole) {
        // Looked at to its end: the toolkit would close its connection over what is no message.
        const BusMessage read = readBusMessage(message);
        if (!read) {
            stream = Stream::Invalid;
            break;
        }
        noteSignOfLife(theBus);
        const int type = ::dbus_message_get_type(read.get());
        if (type == DBUS_MESSAGE_TYPE_METHOD_RETURN || type == DBUS_MESSAGE_TYPE_ERROR)
            takeAnswer(*read, message);
        else if (m_hasName)
            m_toolkit.toSend += message;
        else if (m_early.size() < mostUnread)
            m_early += message;
    }
    if (stream == Stream::Invalid) loseBus("sent what is no message");
}

void seat::RelayedConnection::loseBus(const char* reason) {
    if (m_busIsLost) return;
    m_busIsLost = true;
    m_bus = BufferedSocket(Descriptor());
    m_silent.clear();
    m_isRefused = !m_hasName;
    for (const auto& [serial, call] : m_calls)
        if (!call.isAnswered) m_toolkit.toSend += noAnswer(serial);
    m_calls.clear();
    // Until the toolkit comes there may be another one.
    if (isAttached()) NSLog("accessibility: the %s %s; it is off until the next start", m_busName.c_str(), reason);
}

bool seat::RelayedConnection::noteCall(const std::string& message, Clock::time_point now) {
    const BusMessage read = readBusMessage(message);
    if (!read || ::dbus_message_get_no_reply(read.get())) return true;
    const std::uint32_t serial = ::dbus_message_get_serial(read.get());
    if (m_busIsLost) {
        m_toolkit.toSend += noAnswer(serial);
        return false;
    }
    Call call;
    call.kind = kindOfCall(*read);
    if (const char* const destination = ::dbus_message_get_destination(read.get())) call.destination = destination;
    if (isSilent(call.destination))
        call.deadline = now;
    else
        call.deadline = call.kind == ToolkitCall::Hello
                            ? std::max(m_begun + m_timeouts.greeting, now + m_timeouts.answer)
                            : now + m_timeouts.answer;
    if (call.kind == ToolkitCall::AccessibilityAddress) call.deadline.reset();
    if (m_calls.size() >= mostCalls) m_calls.erase(m_calls.begin());
    const bool isHello = call.kind == ToolkitCall::Hello;
    m_calls.insert_or_assign(serial, std::move(call));
    if (!isHello) return true;
    m_hello = serial;
    if (!m_name.empty()) greetByName(m_name);
    return false;
}

void seat::RelayedConnection::takeName(DBusMessage& answer) {
    m_name = nameGivenBy(answer);
    if (m_name.empty())
        loseBus("refuses us");
    else if (m_hello && !m_hasName)
        greetByName(m_name);
}

void seat::RelayedConnection::greetByName(const std::string& name) {
    m_hasName = true;
    m_calls.erase(*m_hello);
    m_toolkit.toSend += helloAnswer(*m_hello, name) + std::exchange(m_early, {});
}

void seat::RelayedConnection::goOnWithoutGreeting() {
    if (m_withoutGreeting == WithoutGreeting::HasNameOfOurs)
        greetByName(nameOfOurs);
    else
        m_isRefused = true;
}

void seat::RelayedConnection::takeAnswer(DBusMessage& read, const std::string& message) {
    if (::dbus_message_get_reply_serial(&read) == ownHello && m_name.empty()) return takeName(read);
    const auto found = m_calls.find(::dbus_message_get_reply_serial(&read));
    if (found == m_calls.end()) return;
    const Call call = std::move(found->second);
    m_calls.erase(found);
    noteSignOfLife(call.destination);
    if (!call.isAnswered)
        m_toolkit.toSend +=
            call.kind == ToolkitCall::AccessibilityAddress ? answerWithAddress(read, m_changeAddress) : message;
    else if (m_askedAgain < mostAskedAgain)
        if (const auto signal = signalToAskAgain(call.kind, read); !signal.empty()) {
            ++m_askedAgain;
            m_toolkit.toSend += signal;
        }
}

void seat::RelayedConnection::answerOverdueCalls(Clock::time_point now) {
    bool isUngreeted = false;
    for (auto& [serial, call] : m_calls) {
        if (!call.deadline || *call.deadline > now) continue;
        call.deadline.reset();
        call.isAnswered = true;
        noteSilence(call.destination, call.kind == ToolkitCall::Hello ? now : now + timeToSaySo);
        if (call.kind == ToolkitCall::Hello)
            isUngreeted = true;
        else
            m_toolkit.toSend += m_isAccessible ? affirmativeAnswer(call.kind, serial) : noAnswer(serial);
    }
    if (isUngreeted) goOnWithoutGreeting();
}

bool seat::RelayedConnection::isSilent(const std::string& destination) const {
    return m_silent.contains(theBus) || m_silent.contains(destination);
}

void seat::RelayedConnection::noteSilence(const std::string& destination, Clock::time_point sayAt) {
    if (!isSilent(destination)) m_silent[destination].sayAt = sayAt;
}

void seat::RelayedConnection::sayWhoIsSilent(Clock::time_point now) {
    for (auto& [destination, silence] : m_silent) {
        if (!silence.sayAt || *silence.sayAt > now) continue;
        silence.sayAt.reset();
        NSLog("accessibility: %s does not answer; the window goes on without", inLog(destination).c_str());
    }
}

void seat::RelayedConnection::noteSignOfLife(const std::string& destination) {
    const auto found = m_silent.find(destination);
    if (found == m_silent.end()) return;
    if (!found->second.sayAt) NSLog("accessibility: %s answers again", inLog(destination).c_str());
    m_silent.erase(found);
}

std::string seat::RelayedConnection::inLog(const std::string& destination) const {
    return (destination == theBus ? "the " : destination + " on the ") + m_busName;
}
