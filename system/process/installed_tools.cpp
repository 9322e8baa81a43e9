#include "system/process/installed_tools.h"

#include "system/files/root.h"

#include <fcntl.h>
#include <map>
#include <unistd.h>

namespace {

// Never destroyed, as the children are not.
std::map<std::string, std::string>& installedTools() {
    static auto* const tools = new std::map<std::string, std::string>;
    return *tools;
}

} // namespace

void seat::setInstalledTool(const std::string& logicalPath, std::string realPath) {
    installedTools()[logicalPath] = std::move(realPath);
}

std::string seat::toolPath(const std::string& logicalPath) {
    const std::string own = hostPath(logicalPath);
    const auto installed = installedTools().find(logicalPath);
    // A link that leads nowhere is the user's own too: it is not there because something is wrong with it.
    const bool hasOwn = ::faccessat(AT_FDCWD, own.c_str(), F_OK, AT_SYMLINK_NOFOLLOW) == 0;
    return hasOwn || installed == installedTools().end() ? own : installed->second;
}
