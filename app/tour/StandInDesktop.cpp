#include "app/tour/StandInDesktop.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <utility>

namespace fs = std::filesystem;

namespace {

constexpr const char* mailProgram = "mail-program";

} // namespace

app::StandInDesktop::StandInDesktop(std::string folder) : m_folder(std::move(folder)) {
    setVariable("XDG_DATA_HOME", m_folder + "/data");
    setVariable("XDG_DATA_DIRS", m_folder + "/system");
    setVariable("XDG_CONFIG_HOME", m_folder + "/config");
    setVariable("XDG_CONFIG_DIRS", m_folder + "/system");
    m_isThere = install("browser", "x-scheme-handler/http", "exit 0");
}

app::StandInDesktop::~StandInDesktop() {
    for (const auto& [name, value] : m_former) {
        if (value)
            setenv(name.c_str(), value->c_str(), 1);
        else
            unsetenv(name.c_str());
    }
    std::error_code error;
    fs::remove_all(m_folder, error);
}

void app::StandInDesktop::setVariable(const std::string& name, const std::string& value) {
    const char* const former = std::getenv(name.c_str());
    m_former[name] = former ? std::optional<std::string>(former) : std::nullopt;
    setenv(name.c_str(), value.c_str(), 1);
}

bool app::StandInDesktop::installMail(const std::string& messageFile) {
    // Beside the program: a path may hold what a shell would make something else of.
    std::error_code error;
    fs::remove(m_folder + "/message", error);
    fs::create_symlink(messageFile, m_folder + "/message", error);
    return !error && install(mailProgram, "message/rfc822", R"(cat "$1" >"${0%/*}/message")");
}

bool app::StandInDesktop::removeMail() {
    std::error_code error;
    fs::remove(m_folder + "/system/applications/" + mailProgram + ".desktop", error);
    return !error;
}

// What is installed goes where a system keeps its programs, and is found as the only one of its kind.
bool app::StandInDesktop::install(const std::string& name, const std::string& mediaType,
                                  const std::string& action) const {
    const fs::path applications = m_folder + "/system/applications";
    const fs::path program = m_folder + "/" + name;
    std::error_code error;
    fs::create_directories(applications, error);
    std::ofstream(program) << "#!/bin/sh\n" << action << '\n';
    fs::permissions(program, fs::perms::owner_all, error);
    std::ofstream(applications / (name + ".desktop"))
        << "[Desktop Entry]\nType=Application\nName=" << name << "\nExec=\"" << program.string() << "\" %u\n";
    std::ofstream cache(applications / "mimeinfo.cache", std::ios::app);
    cache << "[MIME Cache]\n" << mediaType << '=' << name << ".desktop;\n";
    return cache.flush() && !error;
}
