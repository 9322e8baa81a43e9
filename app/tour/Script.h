#pragma once

// The text that a tour follows: one step a line, words separated by spaces, "quoted" where they hold spaces, # begins a
// comment.

#include <string>
#include <string_view>
#include <vector>

namespace app {

struct ScriptLine {
    int number = 0;                 // from 1
    std::vector<std::string> words; // never empty
};

struct Script {
    std::vector<ScriptLine> lines;
    std::string problem; // empty when the text could be read; else what is wrong in which line
};

Script parseScript(std::string_view text);

} // namespace app
