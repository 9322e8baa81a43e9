#include "kit/settings_framework/bundle.h"

#include <utility>

namespace seat {
namespace {

std::string& folder() {
    static auto& path = *new std::string;
    return path;
}

} // namespace

void setResourceFolder(std::string realPath) { folder() = std::move(realPath); }
const std::string& resourceFolder() { return folder(); }

} // namespace seat
