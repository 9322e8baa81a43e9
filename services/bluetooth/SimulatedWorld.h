#pragma once

#include "services/bluetooth/Client.h"
#include "services/common/EventLoop.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace bluetooth {

struct SimulatedController {
    Address address;
    std::string name;
    std::optional<int> type; // of the page's; without one it stands for any
    bool isInPairingMode = false;
    bool isOff = false;
    bool refuses = false;
    bool wantsPin = false;
    bool hasForgotten = false; // the keys of its pairing
    bool isPaired = false;
    bool isTrusted = false;
    bool isConnected = false;
    std::vector<std::string> otherWords; // kept as they are
};

// What is in the file of simulated controllers. Lines that are no controllers (comments, mistakes) are kept.
struct SimulatedState {
    struct Line {
        std::string text;
        std::optional<SimulatedController> controller;
    };
    AdapterState adapter = AdapterState::On;
    std::vector<Line> lines;

    SimulatedController* find(const Address& address);
    const SimulatedController* find(const Address& address) const {
        return const_cast<SimulatedState*>(this)->find(address);
    }

    // `problems` gets one text for each line that says nothing.
    static SimulatedState fromText(std::string_view text, std::vector<std::string>& problems);
    std::string text() const;
};

// The file itself, which several programs and a person read and write: replaced as a whole, by one at a time, and heard
// of by all. A file that is absent is made with a few controllers in it. One thread.
class SimulatedWorld {
public:
    // `changed` is called when somebody has changed the file, also when it was this program.
    SimulatedWorld(services::EventLoop& loop, std::string path, std::function<void()> changed);
    ~SimulatedWorld();
    SimulatedWorld(const SimulatedWorld&) = delete;
    SimulatedWorld& operator=(const SimulatedWorld&) = delete;

    const SimulatedState& state() const { return m_state; }
    // Changes what is in the file now, under its lock, and writes it when the text is another. False, logged, when it
    // cannot be written.
    bool change(const std::function<void(SimulatedState&)>& edit);

private:
    void read();
    bool write(const std::string& text) const;

    std::string m_path;
    std::function<void()> m_changed;
    SimulatedState m_state;
    std::string m_text;
    int m_notifier = -1;
    services::EventLoop::Source m_watch;
};

} // namespace bluetooth
