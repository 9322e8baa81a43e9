#include "services/jvnd/make_folders.h"

#include <cerrno>
#include <sys/stat.h>

void jvnd::makeFolders(const std::filesystem::path& folder) {
    if (folder.empty() || ::mkdir(folder.c_str(), 0700) == 0 || errno != ENOENT) return;
    makeFolders(folder.parent_path());
    ::mkdir(folder.c_str(), 0700);
}
