#include "simulator/daemon_manner.h"

#include <charconv>
#include <map>
#include <sstream>

namespace simulator {

namespace {

std::optional<std::uint32_t> number(const std::string& text, int base = 10) {
    std::uint32_t value = 0;
    const char* const end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, value, base);
    return !text.empty() && result.ec == std::errc() && result.ptr == end ? std::optional(value) : std::nullopt;
}

std::optional<Bytes> hexBytes(std::istringstream& words) {
    Bytes bytes;
    for (std::string word; words >> word;) {
        const auto value = number(word, 16);
        if (!value || *value > 255) return std::nullopt;
        bytes.push_back(static_cast<std::uint8_t>(*value));
    }
    return bytes;
}

using CloseAt = DaemonManner::CloseAt;
const std::map<std::string, CloseAt> closings{{"accept", CloseAt::Accept},
                                              {"byte", CloseAt::FirstByte},
                                              {"frame", CloseAt::Frame},
                                              {"answer", CloseAt::Answer},
                                              {"never", CloseAt::Never}};

using Change = void (*)(DaemonManner&);
const std::map<std::string, Change> changes{
    {"behave", [](DaemonManner& m) { m = {}; }},
    {"refuse", [](DaemonManner& m) { m.door = DaemonManner::Door::Refusing; }},
    {"deaf", [](DaemonManner& m) { m.door = DaemonManner::Door::Deaf; }},
    {"open", [](DaemonManner& m) { m.door = DaemonManner::Door::Open; }},
    {"unread", [](DaemonManner& m) { m.reads = false; }},
    {"silent", [](DaemonManner& m) { m.answers = false; }},
    {"hold", [](DaemonManner& m) { m.holds = true; }},
    {"garbage", [](DaemonManner& m) { m.garbage = true; }},
};

using NumberedChange = void (*)(DaemonManner&, std::uint32_t);
const std::map<std::string, NumberedChange> numberedChanges{
    {"delay", [](DaemonManner& m, std::uint32_t n) { m.delay = static_cast<int>(n); }},
    {"trickle", [](DaemonManner& m, std::uint32_t n) { m.trickle = static_cast<int>(n); }},
    {"bytes", [](DaemonManner& m, std::uint32_t n) { m.bytes = n; }},
    {"extra", [](DaemonManner& m, std::uint32_t n) { m.extra = n; }},
    {"code", [](DaemonManner& m, std::uint32_t n) { m.code = n; }},
    {"state", [](DaemonManner& m, std::uint32_t n) { m.state = n; }},
};

} // namespace

std::string changeManner(DaemonManner& manner, const std::string& line) {
    std::istringstream words(line);
    std::string first;
    if (!(words >> first) || first.front() == '#') return {};
    if (first == "reply") {
        manner.reply = hexBytes(words);
        return manner.reply ? "" : "reply takes bytes, as in: reply 08 00 00 00";
    }
    std::string value;
    words >> value;
    if (std::string rest; words >> rest) return line + ": too many words";
    if (first == "close") {
        const auto found = closings.find(value);
        if (found == closings.end()) return "close takes accept, byte, frame, answer or never";
        manner.closeAt = found->second;
        return {};
    }
    if (const auto change = changes.find(first); change != changes.end()) {
        if (!value.empty()) return first + " takes no value";
        change->second(manner);
        return {};
    }
    const auto change = numberedChanges.find(first);
    if (change == numberedChanges.end()) return first + ": not a word that the daemon knows";
    const auto count = number(value);
    if (!count) return first + " takes a number";
    change->second(manner, *count);
    return {};
}

} // namespace simulator
