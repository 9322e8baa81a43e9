#include "app/Simulation.h"

#include "app/Bundle.h"
#include "app/LineProcess.h"
#include "app/own_programs.h"
#include "platform/foundation/NSDictionary.h"
#include "system/files/root.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <vector>

namespace {

namespace fs = std::filesystem;

constexpr double readyTimeout = 3;                           // seconds
constexpr const char* simulateVariable = "JOYVANE_SIMULATE"; // tells the tools

// Notes in `made` what was not there.
void makeFolders(const fs::path& folder, std::vector<fs::path>& made, std::error_code& error) {
    if (fs::exists(folder)) return;
    makeFolders(folder.parent_path(), made, error);
    if (!error && fs::create_directory(folder, error)) made.push_back(folder);
}

} // namespace

struct app::Simulation::State {
    std::string daemonName;
    std::unique_ptr<LineProcess> daemon;
    std::shared_ptr<NSDictionary> tools; // logical path -> program; nil when the bundle has none
    std::vector<fs::path> placed;        // what we have put there, folders before what is in them
    std::function<void(const std::string&)> listener;
};

app::Simulation::Simulation() : m_state(std::make_unique<State>()) {}

app::Simulation::~Simulation() {
    stopDaemon();
    unsetenv(simulateVariable);
    std::error_code error; // a folder that others have used meanwhile stays
    for (auto path = m_state->placed.rbegin(); path != m_state->placed.rend(); ++path) fs::remove(*path, error);
}

bool app::Simulation::start(const Bundle& bundle, std::string& problem) {
    setenv(simulateVariable, "1", 1);
    if (const auto* const name = bundle.manifest->objectForKey("JVNDaemon").string()) {
        m_state->daemonName = *name;
        startDaemon(problem);
    }
    m_state->tools = bundle.manifest->objectForKey("JVNTools").object<NSDictionary>();
    if (problem.empty()) placeTools(problem);
    return problem.empty();
}

void app::Simulation::placeTools(std::string& problem) {
    if (!m_state->tools) return;
    m_state->tools->enumerate([&](const std::string& logicalPath, const id& name) {
        const std::string program = name.string() ? ownProgram(*name.string()) : std::string();
        const fs::path place(seat::hostPath(logicalPath));
        std::error_code error;
        if (program.empty()) {
            problem = "simulate: there is no program for " + logicalPath;
        } else {
            makeFolders(place.parent_path(), m_state->placed, error);
            // What an earlier process has left behind is replaced; a tool of the user's own stays.
            if (fs::is_symlink(place)) fs::remove(place, error);
            if (!fs::exists(place)) {
                fs::create_symlink(program, place, error);
                if (!error) m_state->placed.push_back(place);
            }
            if (error) problem = "simulate: " + place.string() + ": " + error.message();
        }
        return problem.empty();
    });
}

// The folders stay: they may hold what others have put there since.
void app::Simulation::removeTools() {
    std::erase_if(m_state->placed, [](const fs::path& path) {
        std::error_code error;
        return fs::is_symlink(path) && fs::remove(path, error);
    });
}

void app::Simulation::setListener(std::function<void(const std::string& line)> listener) {
    m_state->listener = std::move(listener);
}

void app::Simulation::stopDaemon() { m_state->daemon.reset(); }

// Ready when it says so: the page asks it as soon as it is shown.
void app::Simulation::startDaemon(std::string& problem) {
    if (m_state->daemon || m_state->daemonName.empty()) return;
    const std::string program = ownProgram(m_state->daemonName);
    if (program.empty()) {
        problem = "simulate: there is no " + m_state->daemonName + " beside this program";
        return;
    }
    m_state->daemon = LineProcess::start(program, {"--simulate", "--trace", "--root", seat::root()},
                                         [state = m_state.get()](const std::string& line) {
                                             if (state->listener) state->listener(state->daemonName + ": " + line);
                                         });
    if (m_state->daemon && m_state->daemon->waitForLine("ready", readyTimeout)) return;
    m_state->daemon.reset();
    problem = "simulate: " + program + " did not start";
}
