#include "app/tour/tour.h"

#include "app/SettingsPage.h"
#include "app/Simulation.h"
#include "app/tour/Recorder.h"
#include "app/tour/Script.h"
#include "app/tour/Stage.h"
#include "app/tour/StandInDesktop.h"
#include "app/tour/TourFolder.h"
#include "app/tour/steps.h"
#include "desktop/window/Toolkit.h"
#include "kit/alerts/Spinner.h"
#include "system/files/files.h"

#include <cstdio>

namespace {

constexpr std::size_t maximumScriptLength = 64 << 20; // hours of it

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

} // namespace

int app::playTour(seat::Toolkit& toolkit, const Options& options, const Bundle& bundle, Class principalClass,
                  Simulation& simulation) {
    const Script script = readScript(bundle.folder + "/tour.txt");
    if (!script.problem.empty()) return failed(script.problem);
    TourFolder folder;
    std::string problem = folder.prepare(options.tour);
    if (!problem.empty()) return failed(problem);
    const std::string log = folder.claim("log.txt", problem);
    if (log.empty()) return failed(problem);
    Recorder recorder(log);
    if (!recorder.isOpen()) return failed(log + " cannot be written");
    recorder.watchProcesses();
    simulation.setListener([&recorder](const std::string& line) { recorder.note(line); });
    bool isInterrupted = false;
    toolkit.onTermination([&] {
        isInterrupted = true;
        toolkit.quit(ExitFailure);
    });

    seat::Spinner::holdStill();
    SettingsPage page(bundle, principalClass, options.size, options.scale > 0 ? options.scale : tourScale);
    if (!page.isShown()) return failed(bundle.principalClass + " makes no page");
    toolkit.awaitFonts(); // their configuration is searched for where the variables lead
    const std::string desktopFolder = folder.makeDesktopFolder(problem);
    if (desktopFolder.empty()) return failed(problem);
    StandInDesktop desktop(desktopFolder);
    if (!desktop.isThere()) return failed(desktopFolder + " cannot be written");
    Stage stage(toolkit, page.scene());
    Tour tour{stage, recorder, simulation, desktop, folder};
    int code = ExitSuccess;
    for (const ScriptLine& line : script.lines) {
        problem = perform(line, tour);
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
