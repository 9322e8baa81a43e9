#include "services/bluetooth/SimulatedWorld.h"

#include <array>
#include <charconv>
#include <sstream>
#include <utility>

namespace bluetooth {
namespace {

struct Flag {
    std::string_view word;
    bool SimulatedController::*member;
};
constexpr std::array flags{
    Flag{"pairing", &SimulatedController::isInPairingMode}, Flag{"off", &SimulatedController::isOff},
    Flag{"refuses", &SimulatedController::refuses},         Flag{"pin", &SimulatedController::wantsPin},
    Flag{"forgot", &SimulatedController::hasForgotten},     Flag{"paired", &SimulatedController::isPaired},
    Flag{"trusted", &SimulatedController::isTrusted},       Flag{"connected", &SimulatedController::isConnected},
};

constexpr std::array<std::pair<std::string_view, AdapterState>, 4> adapterWords{{
    {"on", AdapterState::On},
    {"off", AdapterState::Off},
    {"blocked", AdapterState::Blocked},
    {"absent", AdapterState::Absent},
}};

constexpr std::string_view typeWord = "type=";

void readWord(SimulatedController& controller, const std::string& word) {
    for (const auto& flag : flags) {
        if (word != flag.word) continue;
        controller.*flag.member = true;
        return;
    }
    int type = 0;
    const char* const end = word.data() + word.size();
    const bool isType = word.starts_with(typeWord);
    const auto read = std::from_chars(word.data() + (isType ? typeWord.size() : 0), end, type);
    if (isType && read.ec == std::errc() && read.ptr == end)
        controller.type = type;
    else
        controller.otherWords.push_back(word);
}

std::optional<SimulatedController> readController(std::istringstream& words) {
    SimulatedController controller;
    std::string word;
    words >> word;
    const auto address = Address::fromText(word);
    if (!address) return std::nullopt;
    controller.address = *address;
    while (words >> word && word != ":") readWord(controller, word);
    std::getline(words >> std::ws, controller.name);
    return controller;
}

std::string lineOf(const SimulatedController& controller) {
    std::string line = "controller " + controller.address.text();
    if (controller.type) line += " " + std::string(typeWord) + std::to_string(*controller.type);
    for (const auto& flag : flags)
        if (controller.*flag.member) (line += ' ') += flag.word;
    for (const auto& word : controller.otherWords) (line += ' ') += word;
    return line + " : " + controller.name;
}

std::optional<AdapterState> adapterNamed(std::string_view word) {
    for (const auto& [name, state] : adapterWords)
        if (word == name) return state;
    return std::nullopt;
}

} // namespace

SimulatedController* SimulatedState::find(const Address& address) {
    for (auto& line : lines)
        if (line.controller && line.controller->address == address) return &*line.controller;
    return nullptr;
}

SimulatedState SimulatedState::fromText(std::string_view text, std::vector<std::string>& problems) {
    SimulatedState state;
    std::istringstream stream{std::string(text)};
    for (std::string line; std::getline(stream, line);) {
        std::istringstream words(line);
        std::string first;
        words >> first;
        Line entry{line, std::nullopt};
        if (first == "controller") {
            entry.controller = readController(words);
            if (!entry.controller) problems.push_back("no address in \"" + line + "\"");
        } else if (first == "bluetooth") {
            std::string word;
            words >> word;
            if (const auto adapter = adapterNamed(word))
                state.adapter = *adapter;
            else
                problems.push_back("not on, off, blocked or absent: \"" + line + "\"");
            continue;
        } else if (!first.empty() && !first.starts_with('#')) {
            problems.push_back("neither \"bluetooth\" nor \"controller\": \"" + line + "\"");
        }
        state.lines.push_back(std::move(entry));
    }
    return state;
}

std::string SimulatedState::text() const {
    std::string text;
    for (const auto& line : lines) (text += line.controller ? lineOf(*line.controller) : line.text) += '\n';
    for (const auto& [word, state] : adapterWords)
        if (state == adapter) text += "bluetooth " + std::string(word) + "\n";
    return text;
}

} // namespace bluetooth
