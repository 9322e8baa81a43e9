#include "app/Simulation.h"

#include "app/Bundle.h"
#include "app/LineProcess.h"
#include "app/own_programs.h"
#include "platform/foundation/NSDictionary.h"
#include "platform/log.h"
#include "system/files/environment.h"
#include "system/files/make_folders.h"
#include "system/files/root.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sys/types.h>
#include <system_error>
#include <utility>
#include <vector>

namespace {

namespace fs = std::filesystem;

constexpr double readyTimeout = 3;                           // seconds
constexpr const char* simulateVariable = "JOYVANE_SIMULATE"; // tells the tools

// Notes in `made` what was not there.
void makeFolders(const fs::path& folder, std::vector<fs::path>& made, std::error_code& error) {
    std::error_code ignored;
    if (fs::exists(folder, ignored)) return;
    makeFolders(folder.parent_path(), made, error);
    if (error) return;
    error.assign(seat::makeFolders(folder), std::generic_category());
    if (!error) made.push_back(folder);
}

bool leadsTo(const fs::path& link, const std::string& program) {
    std::error_code error;
    return fs::read_symlink(link, error) == program && !error;
}

// Where it is written down, a line each, what links stand below the root and where they lead: a process that is killed
// leaves them, and they are not to be taken for the user's own.
std::string recordPath() { return seat::root() + "/.simulated-tools"; }

} // namespace

struct app::Simulation::State {
    struct Link {
        fs::path place;
        std::string program;
    };
    std::string daemonName;
    std::unique_ptr<LineProcess> daemon;
    std::shared_ptr<NSDictionary> tools; // logical path -> program; nil when the bundle has none
    std::vector<fs::path> folders;       // that we have made, each before what is in it
    std::vector<Link> links;
    std::function<void(const std::string&)> listener;
    std::function<void(const std::string&)> endListener;

    void removeLeftovers();
    void removeLinks();
    bool place(const fs::path& place, const std::string& program, std::error_code& error);
    bool writeRecord() const;
    void daemonEnded(::pid_t identifier, const std::string& how);
};

void app::Simulation::State::removeLeftovers() {
    std::ifstream record(recordPath());
    for (std::string place, program; std::getline(record, place, '\t') && std::getline(record, program);)
        links.push_back({place, program});
    removeLinks();
}

void app::Simulation::State::removeLinks() {
    std::error_code error;
    for (const auto& link : std::exchange(links, {}))
        if (leadsTo(link.place, link.program)) fs::remove(link.place, error);
    fs::remove(recordPath(), error);
}

bool app::Simulation::State::writeRecord() const {
    std::ofstream record(recordPath(), std::ios::trunc);
    for (const auto& link : links) record << link.place.string() << '\t' << link.program << '\n';
    return static_cast<bool>(record.flush());
}

// Written down first. Nothing is done where something stands already; false when the link cannot be made.
bool app::Simulation::State::place(const fs::path& place, const std::string& program, std::error_code& error) {
    makeFolders(place.parent_path(), folders, error);
    if (error || fs::exists(fs::symlink_status(place, error))) return !error;
    error.clear(); // it is not there
    links.push_back({place, program});
    if (writeRecord()) fs::create_symlink(program, place, error);
    return !error;
}

void app::Simulation::State::daemonEnded(::pid_t identifier, const std::string& how) {
    daemon.reset();
    const std::string sentence = "the simulated " + daemonName + " (process " + std::to_string(identifier) + ") " + how;
    NSLog("%s", sentence.c_str());
    if (listener) listener(sentence);
    if (endListener) endListener(how);
}

app::Simulation::Simulation() : m_state(std::make_unique<State>()) { m_state->removeLeftovers(); }

app::Simulation::~Simulation() {
    stopDaemon();
    unsetenv(simulateVariable);
    removeTools();
    std::error_code error; // a folder that others have used meanwhile stays
    for (auto folder = m_state->folders.rbegin(); folder != m_state->folders.rend(); ++folder)
        fs::remove(*folder, error);
}

void app::Simulation::settleEnvironment() {
    if (seat::environment(simulateVariable) != "1") setenv(simulateVariable, "1", 1);
}

bool app::Simulation::start(const Bundle& bundle, std::string& problem) {
    settleEnvironment();
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
        if (program.empty())
            problem = "simulate: there is no program for " + logicalPath;
        else if (!m_state->place(place, program, error))
            problem = "simulate: " + place.string() + ": " + error.message();
        return problem.empty();
    });
}

// The folders stay: they may hold what others have put there since.
void app::Simulation::removeTools() { m_state->removeLinks(); }

void app::Simulation::setListener(std::function<void(const std::string& line)> listener) {
    m_state->listener = std::move(listener);
}

void app::Simulation::setDaemonEndListener(std::function<void(const std::string& how)> ended) {
    m_state->endListener = std::move(ended);
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
    if (m_state->daemon && m_state->daemon->waitForLine("ready", readyTimeout)) {
        m_state->daemon->setEndListener([state = m_state.get(), identifier = m_state->daemon->identifier()](
                                            const std::string& how) { state->daemonEnded(identifier, how); });
        return;
    }
    m_state->daemon.reset();
    problem = "simulate: " + program + " did not start";
}
