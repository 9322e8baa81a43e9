#include "desktop/links/DefaultApplication.h"

#include "platform/log.h"
#include "system/process/child_environment.h"
#include "system/process/children.h"
#include "system/process/spawn.h"

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string_view>
#include <unistd.h>

namespace seat {
namespace {

std::string environment(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

std::vector<std::string> split(const std::string& text, char separator) {
    std::vector<std::string> parts;
    std::stringstream stream(text);
    for (std::string part; std::getline(stream, part, separator);)
        if (!part.empty()) parts.push_back(part);
    return parts;
}

std::string orDefault(const char* variable, const std::string& otherwise) {
    const std::string value = environment(variable);
    return value.empty() ? otherwise : value;
}

// Where desktops keep their lists, the user's own before the system's.
std::vector<std::string> dataFolders() {
    const std::string home = environment("HOME");
    std::vector<std::string> folders{orDefault("XDG_DATA_HOME", home + "/.local/share")};
    for (const auto& folder : split(orDefault("XDG_DATA_DIRS", "/usr/local/share:/usr/share"), ':'))
        folders.push_back(folder);
    return folders;
}

std::vector<std::string> listFiles() {
    std::vector<std::string> names;
    for (const auto& desktop : split(environment("XDG_CURRENT_DESKTOP"), ':')) {
        std::string lower;
        for (const char c : desktop) lower += (c >= 'A' && c <= 'Z') ? static_cast<char>(c + 32) : c;
        names.push_back(lower + "-mimeapps.list");
    }
    names.emplace_back("mimeapps.list");

    std::vector<std::string> folders{orDefault("XDG_CONFIG_HOME", environment("HOME") + "/.config")};
    for (const auto& folder : split(orDefault("XDG_CONFIG_DIRS", "/etc/xdg"), ':')) folders.push_back(folder);
    for (const auto& folder : dataFolders()) folders.push_back(folder + "/applications");

    std::vector<std::string> files;
    for (const auto& folder : folders)
        for (const auto& name : names) files.push_back(folder + "/" + name);
    for (const auto& folder : dataFolders()) files.push_back(folder + "/applications/mimeinfo.cache");
    return files;
}

// The value of a key in a group of a desktop-style file; empty when absent.
std::string valueIn(const std::string& file, std::string_view group, std::string_view key) {
    std::ifstream stream(file);
    bool inGroup = false;
    for (std::string line; std::getline(stream, line);) {
        if (line.starts_with('[')) {
            inGroup = line == group;
        } else if (inGroup && line.starts_with(key) && line.size() > key.size()) {
            const auto equals = line.find_first_not_of(' ', key.size());
            if (equals == std::string::npos || line[equals] != '=') continue;
            const auto value = line.find_first_not_of(' ', equals + 1);
            return value == std::string::npos ? "" : line.substr(value);
        }
    }
    return {};
}

// Strings of desktop files have escapes of their own, before those of what they hold.
std::string unescaped(const std::string& value) {
    std::string text;
    for (std::size_t i = 0; i < value.size(); ++i) {
        if (value[i] != '\\' || i + 1 == value.size()) {
            text += value[i];
            continue;
        }
        switch (const char c = value[++i]) {
        case 's':
            text += ' ';
            break;
        case 'n':
            text += '\n';
            break;
        case 't':
            text += '\t';
            break;
        case 'r':
            text += '\r';
            break;
        case '\\':
            text += '\\';
            break;
        default: // none of a string's own: left for who reads the string
            text += '\\';
            text += c;
            break;
        }
    }
    return text;
}

std::string programOnPath(const std::string& program) {
    if (program.starts_with('/')) return ::access(program.c_str(), X_OK) == 0 ? program : "";
    for (const auto& folder : split(orDefault("PATH", "/usr/local/bin:/usr/bin:/bin"), ':'))
        if (const std::string path = folder + "/" + program; ::access(path.c_str(), X_OK) == 0) return path;
    return {};
}

std::optional<DefaultApplication> applicationOf(const std::string& desktopFile) {
    // A name with dashes may also stand for folders; those that do are found by their plain name.
    if (desktopFile.find('/') != std::string::npos) return std::nullopt;
    for (const auto& folder : dataFolders()) {
        const std::string file = folder + "/applications/" + desktopFile;
        const std::string exec = valueIn(file, "[Desktop Entry]", "Exec");
        if (exec.empty()) continue;
        // A deleted one hides those of the same name below it; one that wants a terminal gets none from us.
        if (valueIn(file, "[Desktop Entry]", "Hidden") == "true") return std::nullopt;
        if (valueIn(file, "[Desktop Entry]", "Terminal") == "true") return std::nullopt;
        DefaultApplication application{valueIn(file, "[Desktop Entry]", "Name"), splitExecLine(unescaped(exec))};
        if (application.command.empty()) continue;
        application.command[0] = programOnPath(application.command[0]);
        if (!application.command[0].empty()) return application;
    }
    return std::nullopt;
}

} // namespace

std::vector<std::string> splitExecLine(const std::string& line) {
    std::vector<std::string> arguments;
    std::string argument;
    bool quoted = false;
    bool begun = false;
    for (std::size_t i = 0; i < line.size(); ++i) {
        const char c = line[i];
        if (quoted && c == '\\' && i + 1 < line.size()) {
            argument += line[++i];
        } else if (c == '"') {
            quoted = !quoted;
            begun = true;
        } else if (!quoted && (c == ' ' || c == '\t')) {
            if (begun) arguments.push_back(argument);
            argument.clear();
            begun = false;
        } else {
            argument += c;
            begun = true;
        }
    }
    if (quoted) return {};
    if (begun) arguments.push_back(argument);
    return arguments;
}

std::optional<DefaultApplication> defaultApplication(const std::string& mediaType) {
    for (const auto& file : listFiles())
        for (const char* group : {"[Default Applications]", "[Added Associations]", "[MIME Cache]"})
            for (const auto& desktopFile : split(valueIn(file, group, mediaType), ';'))
                if (auto application = applicationOf(desktopFile)) return application;
    return std::nullopt;
}

std::vector<std::string> argumentsFor(const DefaultApplication& application, const std::string& fileOrAddress) {
    std::vector<std::string> arguments;
    bool isPlaced = false;
    for (std::size_t i = 1; i < application.command.size(); ++i) {
        const std::string& pattern = application.command[i];
        std::string argument;
        for (std::size_t k = 0; k < pattern.size(); ++k) {
            if (pattern[k] != '%' || k + 1 == pattern.size()) {
                argument += pattern[k];
                continue;
            }
            const char code = pattern[++k];
            if (code == 'u' || code == 'U' || code == 'f' || code == 'F') {
                argument += fileOrAddress;
                isPlaced = true;
            } else if (code == 'c') {
                argument += application.name;
            } else if (code == '%') {
                argument += '%';
            } // the icon, the entry's own file and codes of former days stand for nothing
        }
        // An argument that was nothing but a code for nothing is no argument.
        if (!argument.empty() || pattern.empty()) arguments.push_back(argument);
    }
    if (!isPlaced) arguments.push_back(fileOrAddress);
    return arguments;
}

bool openWithApplication(const DefaultApplication& application, const std::string& fileOrAddress) {
    if (application.command.empty()) return false;
    const auto arguments = argumentsFor(application, fileOrAddress);
    auto child =
        spawn(ChildKind::Program, application.command[0], arguments, childEnvironment(), std::chrono::milliseconds(20));
    if (child.identifier == 0) {
        NSLog("%s could not be started: %s", application.command[0].c_str(), std::strerror(child.error));
        return false;
    }
    adoptChild(std::move(child), [program = application.command[0]](int error) {
        NSLog("%s could not be started: %s", program.c_str(), std::strerror(error));
    });
    return true;
}

} // namespace seat
