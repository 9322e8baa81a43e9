#include "kit/settings_framework/bundle.h"

#include "platform/log.h"

#include <utility>

namespace seat {
namespace {

std::string& folder() {
    static auto& path = *new std::string;
    return path;
}

std::function<void(const std::string&, const std::string&)>& faultHandler() {
    static auto& handler = *new std::function<void(const std::string&, const std::string&)>;
    return handler;
}

} // namespace

void setResourceFolder(std::string realPath) { folder() = std::move(realPath); }
const std::string& resourceFolder() { return folder(); }

void setResourceFaultHandler(std::function<void(const std::string& path, const std::string& reason)> handler) {
    faultHandler() = std::move(handler);
}

void reportResourceFault(const std::string& path, const std::string& reason) {
    NSLog("reading the rows of %s: %s", path.c_str(), reason.c_str());
    if (const auto handler = faultHandler()) handler(path, reason);
}

} // namespace seat
