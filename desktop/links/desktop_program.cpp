#include "desktop/links/desktop_program.h"

#include "desktop/links/executable.h"
#include "kit/dispatch/main_queue.h"
#include "platform/log.h"
#include "system/process/child_environment.h"
#include "system/process/children.h"
#include "system/process/spawn.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <poll.h>
#include <sstream>
#include <string_view>
#include <sys/wait.h>
#include <unistd.h>

namespace seat {
namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr auto answerTimeout = 1s;
constexpr auto loadingTimeout = 20ms;
constexpr const char* finder = "/usr/bin/env"; // looks the tool up where the user's programs are
constexpr const char* tool = "gio";

std::vector<std::string> withPlainMessages(std::vector<std::string> environment) {
    std::erase_if(environment, [](const std::string& entry) { return entry.starts_with("LC_ALL="); });
    environment.emplace_back("LC_ALL=C");
    return environment;
}

// What is written to the other end until it is closed; the first part of it when that takes too long.
std::string readUntilClosed(const Descriptor& pipe) {
    const auto end = Clock::now() + answerTimeout;
    std::string text;
    for (;;) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()).count();
        pollfd entry{pipe.get(), POLLIN, 0};
        if (left <= 0 || ::poll(&entry, 1, static_cast<int>(left)) == 0) return text;
        char bytes[4096];
        const auto got = ::read(pipe.get(), bytes, sizeof bytes);
        if (got == 0 || (got < 0 && errno != EINTR)) return text;
        if (got > 0) text.append(bytes, static_cast<std::size_t>(got));
    }
}

// What the tool says; empty, and a logged reason, when it cannot be asked.
std::string askTool(const std::vector<std::string>& question) {
    auto child = spawn(ChildKind::Tool, finder, question, withPlainMessages(childEnvironment()), loadingTimeout);
    if (child.identifier == 0) {
        NSLog("%s could not be started: %s", tool, std::strerror(child.error));
        return {};
    }
    std::string text = readUntilClosed(child.output);
    ::kill(-child.identifier, SIGKILL); // it has ended, or is not waited for any longer
    while (::waitpid(child.identifier, nullptr, 0) < 0 && errno == EINTR) {
    }
    return text;
}

// The value of an absolute-path variable, else the default.
std::string variable(const char* name, const std::string& otherwise) {
    const char* const value = std::getenv(name);
    return value && *value ? value : otherwise;
}

// Where an entry of that name stands: below a folder of data, where a dash in the name may stand for a folder.
std::optional<DesktopProgram> entryNamed(const std::string& name) {
    std::stringstream folders(variable("XDG_DATA_HOME", variable("HOME", "") + "/.local/share") + ":" +
                              variable("XDG_DATA_DIRS", "/usr/local/share:/usr/share"));
    for (std::string folder; std::getline(folders, folder, ':');) {
        if (!folder.starts_with('/')) continue;
        const std::string entries = folder + "/applications/";
        std::string file = name;
        for (auto dash = std::string::npos;; file[dash] = '/') {
            const std::string path = entries + file;
            if (::access(path.c_str(), R_OK) == 0) return DesktopProgram{path};
            dash = file.find('-');
            if (dash == std::string::npos) break;
        }
    }
    return std::nullopt;
}

// A value of the entry; empty when it has none of that name.
std::string valueOf(const DesktopProgram& program, std::string_view name) {
    std::ifstream lines(program.entry);
    bool isInEntry = false;
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with('[')) isInEntry = line == "[Desktop Entry]";
        if (!isInEntry || !line.starts_with(name)) continue;
        const auto sign = line.find_first_not_of(' ', name.size());
        if (sign == std::string::npos || line[sign] != '=') continue;
        const auto begin = line.find_first_not_of(' ', sign + 1);
        return begin == std::string::npos ? std::string() : line.substr(begin);
    }
    return {};
}

// Whether the entry's command holds one of the codes.
bool hasPlace(const DesktopProgram& program, std::string_view codes) {
    const std::string command = valueOf(program, "Exec");
    for (auto sign = command.find('%'); sign != std::string::npos; sign = command.find('%', sign + 2))
        if (sign + 1 < command.size() && codes.find(command[sign + 1]) != std::string_view::npos) return true;
    return false;
}

// The library's tool has ended well before the program is executed, and never hears that it was not.
std::string reasonNotToStart(const DesktopProgram& program) {
    if (valueOf(program, "DBusActivatable") == "true") return {}; // then the bus starts it
    return reasonNotToExecute(programOfCommand(valueOf(program, "Exec")));
}

} // namespace

bool takesFiles(const DesktopProgram& program) { return hasPlace(program, "uUfF"); }
bool takesAddresses(const DesktopProgram& program) { return hasPlace(program, "uU"); }

std::optional<DesktopProgram> defaultProgram(const std::string& mediaType) {
    std::stringstream lines(askTool({tool, "mime", mediaType}));
    for (std::string line; std::getline(lines, line);) {
        constexpr std::string_view begin = "Default application";
        const auto colon = line.rfind(": ");
        if (!line.starts_with(begin) || colon == std::string::npos) continue;
        const std::string name = line.substr(colon + 2);
        if (name.find('/') == std::string::npos) return entryNamed(name);
    }
    return std::nullopt;
}

void startProgram(const DesktopProgram& program, const std::string& fileOrAddress,
                  std::function<void(bool isStarted)> ended) {
    const auto failed = [entry = program.entry, ended](const std::string& reason) {
        NSLog("%s could not be started: %s", entry.c_str(), reason.c_str());
        queueOnMain([ended] { ended(false); });
    };
    if (const auto reason = reasonNotToStart(program); !reason.empty()) return failed(reason);
    auto child = spawn(ChildKind::Program, finder, {tool, "launch", program.entry, fileOrAddress}, childEnvironment(),
                       loadingTimeout);
    if (child.identifier == 0) return failed(std::strerror(child.error));
    adoptChild(std::move(child), {}, [failed, ended](const ChildEnd& end) {
        if (end.exitCode == 0) return ended(true);
        failed(std::string(tool) + " " + end.description);
    });
}

} // namespace seat
