#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace seat {

// A message body for showing: its text in blocks. Knows the elements p, h1, h2, ol, ul, li, a and br, and character
// references; text in other elements counts, the elements do not.
struct HTMLBlock {
    enum class Kind { Heading, Subheading, Paragraph, ListItem } kind = Kind::Paragraph;
    struct Run {
        std::string text;
        std::string address = {}; // of a link; empty for other text
    };
    std::string marker; // "1." of a numbered item, "•" of another; empty for other blocks
    std::vector<Run> runs;

    std::string text() const;
};

// White space is folded. Never fails: what is malformed is text.
std::vector<HTMLBlock> htmlBlocks(std::string_view html);

} // namespace seat
