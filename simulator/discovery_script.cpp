#include "simulator/discovery_script.h"

#include <charconv>
#include <map>
#include <optional>
#include <sstream>

namespace simulator {

const char* const believableDiscovery = "wait 600\n"
                                        "report 4\n"
                                        "wait 1200\n"
                                        "report 0\n"
                                        "wait 2500\n"
                                        "store 00:1b:dc:0f:a1:27\n"
                                        "report 2\n"
                                        "wait 5000\n"; // to be interrupted

namespace {

using Kind = DiscoveryStep::Kind;

std::optional<int> number(const std::string& text, int base = 10) {
    int value = 0;
    const char* const end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, value, base);
    return !text.empty() && result.ec == std::errc() && result.ptr == end ? std::optional(value) : std::nullopt;
}

// Empty when it is no address.
std::vector<std::uint8_t> addressBytes(const std::string& text) {
    std::vector<std::uint8_t> bytes;
    std::istringstream parts(text);
    for (std::string part; std::getline(parts, part, ':');) {
        const auto value = number(part, 16);
        if (!value || *value < 0 || *value > 255) return {};
        bytes.push_back(static_cast<std::uint8_t>(*value));
    }
    return bytes;
}

const std::map<std::string, Kind> plain{{"ignore-interrupt", Kind::IgnoreInterrupt}, {"crash", Kind::Crash}};
const std::map<std::string, Kind> numbered{
    {"report", Kind::Report}, {"flood", Kind::Flood}, {"wait", Kind::Wait}, {"exit", Kind::Exit}};

std::optional<DiscoveryStep> parseStep(const std::string& first, const std::string& value, const std::string& more) {
    if (first == "report" && value == "text" && !more.empty()) return DiscoveryStep{Kind::ReportText, 0, more, {}};
    if (!more.empty()) return std::nullopt;
    if (first == "report" && value == "nothing") return DiscoveryStep{Kind::ReportNothing, 0, "", {}};
    if (first == "report" && value == "other") return DiscoveryStep{Kind::ReportOther, 0, "", {}};
    if (first == "store") {
        auto bytes = addressBytes(value);
        if (bytes.empty()) return std::nullopt;
        return DiscoveryStep{Kind::Store, 0, "", std::move(bytes)};
    }
    if (const auto found = plain.find(first); found != plain.end() && value.empty())
        return DiscoveryStep{found->second, 0, "", {}};
    const auto found = numbered.find(first);
    const auto count = number(value);
    if (found == numbered.end() || !count) return std::nullopt;
    return DiscoveryStep{found->second, *count, "", {}};
}

} // namespace

DiscoveryScript parseDiscoveryScript(const std::string& text) {
    DiscoveryScript script;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::string first;
        std::string value;
        std::string more;
        if (!(words >> first) || first.front() == '#') continue;
        words >> value >> more;
        auto step = parseStep(first, value, more);
        if (step)
            script.steps.push_back(std::move(*step));
        else if (script.problem.empty())
            script.problem = line + ": not a step that the tool knows";
    }
    return script;
}

} // namespace simulator
