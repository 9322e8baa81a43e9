// The file of simulated controllers, which people write: whatever it holds, what is written after reading it is read as
// the same, and what is changed in it is changed.

#include "services/bluetooth/SimulatedWorld.h"

#include <cstdlib>
#include <string_view>

namespace {

using bluetooth::SimulatedState;

void must(bool fact) {
    if (!fact) std::abort();
}

SimulatedState stateOf(std::string_view text) {
    std::vector<std::string> problems;
    auto state = SimulatedState::fromText(text, problems);
    must(problems.size() <= text.size() + 1);
    return state;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    auto state = stateOf({reinterpret_cast<const char*>(data), size});
    const auto text = state.text();
    must(stateOf(text).text() == text);

    for (const auto& line : state.lines) {
        if (!line.controller) continue;
        auto* const controller = state.find(line.controller->address);
        must(controller);
        controller->isPaired = !controller->isPaired;
        auto changed = stateOf(state.text());
        auto* const found = changed.find(line.controller->address);
        must(found && found->isPaired == controller->isPaired && found->name == controller->name);
        must(changed.text() == state.text());
        break;
    }
    return 0;
}
