#pragma once

#include "tests/support/TemporaryFolder.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace testing_support {

// A user's desktop in a folder of its own, with no programs at first: while it lives, the XDG variables lead there and
// nowhere else.
class FakeDesktop {
public:
    FakeDesktop() {
        for (const char* name :
             {"HOME", "XDG_DATA_HOME", "XDG_DATA_DIRS", "XDG_CONFIG_HOME", "XDG_CONFIG_DIRS", "XDG_CURRENT_DESKTOP"}) {
            const char* value = std::getenv(name);
            m_former[name] = value ? std::optional<std::string>(value) : std::nullopt;
        }
        for (const auto& folder : {applications(), config(), programs()}) std::filesystem::create_directories(folder);
        ::setenv("HOME", m_folder.path().c_str(), 1);
        ::setenv("XDG_DATA_HOME", dataHome().c_str(), 1);
        ::setenv("XDG_DATA_DIRS", m_folder.file("system-data").c_str(), 1);
        ::setenv("XDG_CONFIG_HOME", config().c_str(), 1);
        ::setenv("XDG_CONFIG_DIRS", m_folder.file("system-config").c_str(), 1);
        ::unsetenv("XDG_CURRENT_DESKTOP");
    }
    ~FakeDesktop() {
        for (const auto& [name, value] : m_former) {
            if (value)
                ::setenv(name.c_str(), value->c_str(), 1);
            else
                ::unsetenv(name.c_str());
        }
    }
    FakeDesktop(const FakeDesktop&) = delete;
    FakeDesktop& operator=(const FakeDesktop&) = delete;

    std::string file(const std::string& name) const { return m_folder.file(name); }
    std::string dataHome() const { return m_folder.file("data"); }
    std::string applications() const { return dataHome() + "/applications"; }
    std::string config() const { return m_folder.file("config"); }
    std::string programs() const { return m_folder.file("programs"); }

    // A program that notes each argument that it is started with on a line; its real path.
    std::string addProgram(const std::string& name) const {
        const std::string program = programs() + "/" + name;
        std::ofstream(program) << "#!/bin/sh\nprintf '%s\\n' \"$@\" >>\"$0.log\"\n";
        std::filesystem::permissions(program, std::filesystem::perms::owner_all);
        return program;
    }
    // Its desktop file, "<name>.desktop".
    void addDesktopFile(const std::string& name, const std::string& exec) const {
        std::ofstream(applications() + "/" + name + ".desktop")
            << "[Desktop Entry]\nType=Application\nName=" << name << "\nExec=" << exec << "\n";
    }
    // Adds to the user's choices.
    void setDefault(const std::string& mediaType, const std::string& name) {
        m_defaults += mediaType + "=" + name + ".desktop\n";
        std::ofstream(config() + "/mimeapps.list") << "[Default Applications]\n" << m_defaults;
    }
    // A program, its desktop file and the choice of it, in one.
    void install(const std::string& mediaType, const std::string& name) {
        addDesktopFile(name, addProgram(name) + " %u");
        setDefault(mediaType, name);
    }
    void removeProgram(const std::string& name) const { std::filesystem::remove(programs() + "/" + name); }

    // What the program was started with, over all its starts.
    std::vector<std::string> argumentsOf(const std::string& name) const {
        std::vector<std::string> arguments;
        std::ifstream log(programs() + "/" + name + ".log");
        for (std::string line; std::getline(log, line);) arguments.push_back(line);
        return arguments;
    }

private:
    TemporaryFolder m_folder;
    std::map<std::string, std::optional<std::string>> m_former;
    std::string m_defaults;
};

// While it lives the desktop's tool answers as ever, but starts nothing.
class RefusingTool {
public:
    explicit RefusingTool(const FakeDesktop& desktop) : m_path(std::getenv("PATH")) {
        const std::string tool = desktop.programs() + "/gio";
        std::ofstream(tool) << "#!/bin/sh\n[ \"$1\" = mime ] || exit 1\nPATH='" << m_path << "' exec gio \"$@\"\n";
        std::filesystem::permissions(tool, std::filesystem::perms::owner_all);
        ::setenv("PATH", (desktop.programs() + ":" + m_path).c_str(), 1);
    }
    ~RefusingTool() { ::setenv("PATH", m_path.c_str(), 1); }
    RefusingTool(const RefusingTool&) = delete;
    RefusingTool& operator=(const RefusingTool&) = delete;

private:
    std::string m_path;
};

} // namespace testing_support
