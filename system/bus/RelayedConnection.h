#pragma once

#include "system/bus/BufferedSocket.h"
#include "system/bus/RelayTimeouts.h"
#include "system/bus/accessibility_calls.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <poll.h>
#include <string>
#include <vector>

namespace seat {

// One connection of the toolkit to a bus, with us in between. We greet the bus by ourselves, at once, so that the
// toolkit, which comes later, need not wait for what has been said. Messages go through as they are, whole ones only;
// each call of the toolkit has an answer in time: the bus's, or ours, which is an error. What the bus answers after
// that is dropped, and where the toolkit needs it, it is made to ask again. Who has not answered is not waited for
// again until something comes from there. When the bus is lost the toolkit keeps its connection and gets errors: one
// that is closed while it waits for an answer leaves it waiting for ever. Only while it has not been greeted yet is it
// the other way round: an error for a greeting ends the process. A greeting that comes too late for the toolkit is
// taken all the same where its own name does not matter to anybody. One thread.
class RelayedConnection {
public:
    using Clock = std::chrono::steady_clock;
    // Given the address of the accessibility bus, the address at which the toolkit is to find it.
    using AddressChange = std::function<std::string(const std::string& address)>;

    // What becomes of the toolkit when the bus has not greeted it in time. With a name of ours it goes on as with a bus
    // that is silent, and hears when it no longer is; but what it tells others of itself must have the bus's name.
    enum class WithoutGreeting { HasNameOfOurs, IsRefused };

    // `busName` is what the log calls the bus. Its time to greet us begins now. While `isAccessible`, the toolkit is
    // told that there is accessibility, and that it is on, when nobody answers that in time; it outlives this object.
    RelayedConnection(Descriptor bus, std::string busName, RelayTimeouts timeouts, WithoutGreeting withoutGreeting,
                      AddressChange changeAddress, const std::atomic<bool>& isAccessible);
    // The toolkit has come. Once.
    void attach(Descriptor toolkit);

    // What to wait for, and until when.
    void addEntries(std::vector<pollfd>& entries) const;
    std::optional<Clock::time_point> deadline() const;
    // Passes on what is there. False when the connection is over.
    bool serve(Clock::time_point now);

private:
    struct Call {
        ToolkitCall kind = ToolkitCall::Plain;
        std::string destination;
        std::optional<Clock::time_point> deadline; // none: the toolkit does not wait for this one, or has an answer
        bool isAnswered = false;                   // by us
    };
    // Of somebody who has not answered.
    struct Silence {
        std::optional<Clock::time_point> sayAt; // none: it has been said
    };

    bool isAttached() const { return m_toolkit.descriptor() >= 0; }
    bool takeFromToolkit(Clock::time_point now);
    void takeFromBus();
    void greetToolkit();
    void greetBus();
    // Whether the bus is to have it.
    bool noteCall(const std::string& message, Clock::time_point now);
    void takeName(DBusMessage& answer);
    void greetByName(const std::string& name);
    void goOnWithoutGreeting();
    void takeAnswer(DBusMessage& read, const std::string& message);
    void loseBus(const char* reason);
    void answerOverdueCalls(Clock::time_point now);
    void sayWhoIsSilent(Clock::time_point now);
    bool isFull() const;
    bool isSilent(const std::string& destination) const;
    void noteSilence(const std::string& destination, Clock::time_point sayAt);
    void noteSignOfLife(const std::string& destination);
    std::string inLog(const std::string& destination) const;

    RelayTimeouts m_timeouts;
    WithoutGreeting m_withoutGreeting;
    Clock::time_point m_begun = Clock::now();
    BufferedSocket m_toolkit{Descriptor()};
    BufferedSocket m_bus;
    std::string m_busName;
    AddressChange m_changeAddress;
    const std::atomic<bool>& m_isAccessible;
    bool m_toolkitIsGreeted = false; // both sides begin with lines of text, messages follow
    bool m_busIsGreeted = false;
    std::string m_name;                   // with which the bus has greeted us; empty before
    std::optional<std::uint32_t> m_hello; // the toolkit waits to be greeted
    bool m_hasName = false;               // it has been
    std::string m_early;                  // from the bus, for then
    bool m_busIsLost = false;
    bool m_isRefused = false;
    std::string m_waiting; // for the bus to be greeted
    std::map<std::uint32_t, Call> m_calls;
    std::map<std::string, Silence> m_silent;
    int m_askedAgain = 0;
};

} // namespace seat
