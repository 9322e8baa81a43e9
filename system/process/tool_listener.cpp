#include "system/process/tool_listener.h"

#include <utility>

namespace {

std::function<void(const std::string&, const std::string&)>& toolListener() {
    static auto& listener = *new std::function<void(const std::string&, const std::string&)>;
    return listener;
}

} // namespace

void seat::setToolListener(std::function<void(const std::string&, const std::string&)> listener) {
    toolListener() = std::move(listener);
}

void seat::tellOfTool(const std::string& path, const std::string& reason) {
    if (const auto listener = toolListener()) listener(path, reason);
}
