#pragma once

// What the relay has to know of the toolkit's calls of the buses.

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

struct DBusMessage;

namespace seat {

struct BusMessageRelease {
    void operator()(DBusMessage* message) const;
};
using BusMessage = std::unique_ptr<DBusMessage, BusMessageRelease>;

// A message as it is on the wire, whole; nullptr when it is none.
BusMessage readBusMessage(const std::string& bytes);
std::string bytesOfBusMessage(DBusMessage& message, std::uint32_t serial);

enum class ToolkitCall {
    Plain,
    Hello,
    AccessibilityAddress, // where the accessibility bus is: may start programs, and nothing waits for it
    AccessibilityOwner,   // whether there is accessibility
    AccessibilityState,   // whether it is on
    EventListeners,       // what assistive technology wants to hear of
};
ToolkitCall kindOfCall(DBusMessage& call);

// The call that every connection to a bus begins with; the name in its answer, empty when there is none; the answer
// with a name.
std::string helloCall(std::uint32_t serial);
std::string nameGivenBy(DBusMessage& answer);
std::string helloAnswer(std::uint32_t serial, const std::string& name);

// The answer that the toolkit gets to a call that had none in time.
std::string noAnswer(std::uint32_t serial);
// That there is accessibility, or that it is on; noAnswer() to other calls.
std::string affirmativeAnswer(ToolkitCall kind, std::uint32_t serial);

// The answer to AccessibilityAddress with the address changed; as it is when there is none in it.
std::string answerWithAddress(DBusMessage& answer, const std::function<std::string(const std::string&)>& change);

// What makes the toolkit ask again for what this call asked: its answer came too late. Empty when nothing does.
std::string signalToAskAgain(ToolkitCall kind, DBusMessage& lateAnswer);

} // namespace seat
