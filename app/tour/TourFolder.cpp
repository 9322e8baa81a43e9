#include "app/tour/TourFolder.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <vector>

namespace fs = std::filesystem;

namespace {

constexpr std::string_view desktopPrefix = ".desktop-";

// A name in the folder itself; the list may have been edited.
bool isPlainName(const std::string& name) {
    return !name.empty() && name != "." && name != ".." && name.find('/') == std::string::npos;
}

} // namespace

std::string app::TourFolder::prepare(const std::string& folder) {
    std::error_code error;
    m_path = fs::absolute(folder, error).string();
    if (error) return folder + ": " + error.message();
    fs::create_directories(m_path, error);
    if (error) return m_path + ": " + error.message();

    std::vector<std::string> names;
    std::ifstream list(m_path + "/" + listName);
    for (std::string name; std::getline(list, name);)
        if (isPlainName(name)) names.push_back(name);
    for (const auto& name : names) {
        const std::string path = m_path + "/" + name;
        name.starts_with(desktopPrefix) ? fs::remove_all(path, error) : fs::remove(path, error);
        if (error) return m_path + "/" + name + ": " + error.message();
    }
    std::ofstream empty(m_path + "/" + listName, std::ios::trunc);
    return empty.is_open() ? std::string() : m_path + "/" + listName + " cannot be written";
}

bool app::TourFolder::list(const std::string& name) const {
    std::ofstream list(m_path + "/" + listName, std::ios::app);
    list << name << '\n';
    return static_cast<bool>(list.flush());
}

std::string app::TourFolder::claim(const std::string& name, std::string& problem) {
    std::string path = m_path + "/" + name;
    std::error_code error;
    if (fs::exists(fs::symlink_status(path, error))) {
        problem = path + " is no tour's, and is in the way";
        return {};
    }
    if (list(name)) return path;
    problem = m_path + "/" + listName + " cannot be written";
    return {};
}

std::string app::TourFolder::makeDesktopFolder(std::string& problem) {
    std::string path = m_path + "/" + std::string(desktopPrefix) + "XXXXXX";
    if (!::mkdtemp(path.data())) {
        problem = path + ": " + std::strerror(errno);
        return {};
    }
    if (list(fs::path(path).filename())) return path;
    problem = m_path + "/" + listName + " cannot be written";
    std::error_code error;
    fs::remove(path, error);
    return {};
}
