#pragma once

#include <functional>
#include <string>

namespace seat {

// Where cut and copied text goes and comes from. Without one it stays in the process.
struct Pasteboard {
    std::function<std::string()> read;
    std::function<void(const std::string& text)> write;
};
void setPasteboard(Pasteboard pasteboard);

} // namespace seat
