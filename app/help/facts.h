#pragma once

#include "app/help/StatusRow.h"
#include "services/daemon_status/Status.h"

#include <optional>
#include <string>

namespace app {

// What the help screen says of how things are here.
struct HelpFacts {
    std::optional<daemon_status::Status> status; // nothing while the daemon says nothing
    bool isDaemonReached = false;                // it has answered the page, whatever it says beside that
    bool isDaemonInstalled = false;
    std::string startProblem; // why it could not be started, as a sentence; empty: nobody has tried
    bool canStartDaemon = false;
    bool isSimulated = false;
};

struct Fact {
    std::string state; // a word or two
    StatusRow::Mood mood = StatusRow::Mood::Plain;
    std::string advice = {}; // a sentence; may be empty
};

Fact daemonFact(const HelpFacts& facts);
Fact bluetoothFact(const HelpFacts& facts);
Fact keyboardFact(const HelpFacts& facts);

} // namespace app
