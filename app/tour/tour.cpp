#include "app/tour/tour.h"

#include "app/SettingsPage.h"
#include "app/Simulation.h"
#include "app/tour/Recorder.h"
#include "app/tour/Script.h"
#include "app/tour/Stage.h"
#include "app/tour/StandInDesktop.h"
#include "app/tour/steps.h"
#include "desktop/window/Toolkit.h"
#include "system/files/files.h"

#include <cstdio>
#include <filesystem>

namespace {

constexpr double usualScale = 2;
constexpr std::size_t maximumScriptLength = 1 << 20;

int failed(const std::string& sentence) {
    std::fprintf(stderr, "joyvane-settings: tour: %s\n", sentence.c_str());
    return app::ExitFailure;
}

app::Script readScript(const std::string& path) {
    std::shared_ptr<NSError> error;
    const auto data = seat::readFile(path, maximumScriptLength, &error);
    if (!data) return {{}, error ? error->localizedDescription() : path + " cannot be read"};
    const auto bytes = data->bytes();
    return app::parseScript({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

// Empties the folder of what an earlier tour has left in it.
std::string prepareFolder(const std::string& folder) {
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error) return folder + ": " + error.message();
    for (const auto& entry : std::filesystem::directory_iterator(folder, error)) {
        const auto name = entry.path().filename().string();
        if (name.size() > 8 && name.find_first_not_of("0123456789") == 3 && name[3] == '-' && name.ends_with(".png"))
            std::filesystem::remove(entry.path(), error);
    }
    return {};
}

} // namespace

int app::playTour(seat::Toolkit& toolkit, const Options& options, const Bundle& bundle, Class principalClass,
                  Simulation& simulation) {
    const Script script = readScript(bundle.folder + "/tour.txt");
    if (!script.problem.empty()) return failed(script.problem);
    if (const auto problem = prepareFolder(options.tour); !problem.empty()) return failed(problem);
    Recorder recorder(options.tour + "/log.txt");
    if (!recorder.isOpen()) return failed(options.tour + "/log.txt cannot be written");
    recorder.watchProcesses();
    simulation.setListener([&recorder](const std::string& line) { recorder.note(line); });
    bool isInterrupted = false;
    toolkit.onTermination([&] {
        isInterrupted = true;
        toolkit.quit(ExitFailure);
    });

    SettingsPage page(bundle, principalClass, options.size, options.scale > 0 ? options.scale : usualScale);
    if (!page.isShown()) return failed(bundle.principalClass + " makes no page");
    toolkit.awaitFonts(); // their configuration is searched for where the variables lead
    StandInDesktop desktop(options.tour);
    if (!desktop.isThere()) return failed(options.tour + "/desktop cannot be written");
    Stage stage(toolkit, page.scene());
    Tour tour{stage, recorder, simulation, desktop, options.tour};
    int code = ExitSuccess;
    for (const ScriptLine& line : script.lines) {
        const auto problem = perform(line, tour);
        if (problem.empty() && !isInterrupted) continue;
        recorder.note("! " + problem);
        takePicture("where the tour ended", tour);
        code = failed("line " + std::to_string(line.number) + ": " + (isInterrupted ? "interrupted" : problem));
        break;
    }
    page.close();
    simulation.setListener(nullptr);
    return code;
}
