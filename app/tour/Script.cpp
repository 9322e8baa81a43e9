#include "app/tour/Script.h"

namespace {

constexpr std::string_view spaces = " \t\r";

// Takes the first word off `rest`, which begins with no space. False when a quotation has no end.
bool takeWord(std::string_view& rest, std::string& word) {
    const bool isQuoted = rest.front() == '"';
    if (isQuoted) rest.remove_prefix(1);
    const auto end = isQuoted ? rest.find('"') : rest.find_first_of(spaces);
    if (isQuoted && end == std::string_view::npos) return false;
    word = rest.substr(0, end);
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    return true;
}

} // namespace

app::Script app::parseScript(std::string_view text) {
    Script script;
    for (int number = 1; !text.empty(); ++number) {
        const auto end = text.find('\n');
        std::string_view rest = text.substr(0, end);
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        ScriptLine line{number, {}};
        for (;;) {
            const auto begin = rest.find_first_not_of(spaces);
            if (begin == std::string_view::npos || rest[begin] == '#') break;
            rest.remove_prefix(begin);
            std::string word;
            if (!takeWord(rest, word)) {
                script.problem = "line " + std::to_string(number) + ": a quotation has no end";
                return script;
            }
            line.words.push_back(std::move(word));
        }
        if (!line.words.empty()) script.lines.push_back(std::move(line));
    }
    return script;
}
