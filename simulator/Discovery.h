#pragma once

#include "kit/dispatch/run_loop_sources.h"
#include "platform/foundation/NSDictionary.h"
#include "simulator/discovery_script.h"
#include "simulator/program.h"

#include <cstddef>
#include <memory>

namespace simulator {

// Plays the discovery tool's script, a step after the other, and ends the program with its last.
class Discovery {
public:
    // The logical path of the script; without such a file it is believableDiscovery.
    static constexpr const char* scriptPath = "/var/tmp/jvndiscovery.script";

    Discovery(Program& program, DiscoveryScript script);
    ~Discovery();
    Discovery(const Discovery&) = delete;
    Discovery& operator=(const Discovery&) = delete;

private:
    void next();
    void nextAfter(double seconds);
    void play(const DiscoveryStep& step);
    void report(const std::shared_ptr<NSDictionary>& dictionary);
    void flood(int left);
    void store(const DiscoveryStep& step);

    Program& m_program;
    DiscoveryScript m_script;
    std::size_t m_next = 0;
    seat::SourceToken m_timer = 0;
    std::shared_ptr<int> m_alive = std::make_shared<int>(); // held weakly by answers that are awaited
};

} // namespace simulator
