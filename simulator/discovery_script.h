#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace simulator {

struct DiscoveryStep {
    enum class Kind {
        Report,          // `number`
        ReportNothing,   // no dictionary
        ReportOther,     // a dictionary without the key
        ReportText,      // the text under the key
        Flood,           // `number` reports of searching, as fast as the bus takes them
        Wait,            // `number` milliseconds
        Store,           // `bytes` as the paired controller's address
        IgnoreInterrupt, // from here on
        Exit,            // with `number`
        Crash,
    };
    Kind kind = Kind::Wait;
    int number = 0;
    std::string text;
    std::vector<std::uint8_t> bytes;
};

struct DiscoveryScript {
    std::vector<DiscoveryStep> steps;
    std::string problem; // what is wrong with it; empty when nothing is
};

// A line a step:
//   report N | report nothing | report other | report text WORD
//   flood N | wait MS | store AA:BB:CC:DD:EE:FF | ignore-interrupt | exit N | crash
// An empty line and one that begins with # are none.
DiscoveryScript parseDiscoveryScript(const std::string& text);

// A search that finds a controller, at a pace that a person can follow.
extern const char* const believableDiscovery;

} // namespace simulator
