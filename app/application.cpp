#include "app/application.h"

#include "app/bundle.h"
#include "app/settings_page.h"
#include "app/simulation.h"
#include "app/tour/tour.h"
#include "host/bus/SessionBus.h"
#include "host/bus/session_bus_address.h"
#include "host/dispatch/main_queue.h"
#include "host/foundation/root.h"
#include "host/mail/browser.h"
#include "host/window/scene_window.h"
#include "host/window/toolkit.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <future>
#include <memory>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

constexpr auto busPatience = 300ms; // a bus that is well answers in less than one

void complain(const std::string& sentence) { std::fprintf(stderr, "joyvane-settings: %s\n", sentence.c_str()); }

void noDisplay(const std::string& reason) {
    complain("no display: " + reason + "; with --tour DIR the page is shown in pictures instead");
    // The toolkit is half-made: nothing of it may be taken down.
    _exit(app::ExitNoDisplay);
}

std::string userDataFolder() {
    if (const char* const data = std::getenv("XDG_DATA_HOME"); data && data[0] == '/') return data;
    const char* const home = std::getenv("HOME");
    return std::string(home && *home ? home : "/tmp") + "/.local/share";
}

// Makes the folder that stands for the phone's file system where it is missing. False, and a complaint, on failure.
bool settleRoot(const std::string& given) {
    const fs::path root = fs::absolute(given.empty() ? userDataFolder() + "/joyvane" : given).lexically_normal();
    std::error_code error;
    fs::create_directories(root, error);
    if (!fs::is_directory(root)) {
        complain("root " + root.string() + ": " + (error ? error.message() : "is no folder"));
        return false;
    }
    host::setRoot(root.string());
    return true;
}

int showWindow(host::Toolkit& toolkit, const app::Options& options, const app::Bundle& bundle, Class principalClass) {
    // Asked for first: the window system makes the window while we make the page.
    auto window =
        std::make_unique<host::SceneWindow>(host::SceneWindowOptions{.size = options.size, .scale = options.scale});
    toolkit.awaitFonts();
    app::SettingsPage page(bundle, principalClass, window->size(), window->scale());
    if (!page.isShown()) {
        complain("bundle refused: " + bundle.principalClass + " of " + bundle.folder + " makes no page");
        return app::ExitBundleRefused;
    }
    window->setScene(page.scene());
    window->setTitleSource([&page] { return page.title(); });
    window->setCloseHandler([&toolkit] { toolkit.quit(app::ExitSuccess); });
    toolkit.onTermination([&toolkit] { toolkit.quit(app::ExitSuccess); });
    const int code = toolkit.run();
    page.close();
    host::drainMainQueue();
    window.reset(); // before the scene
    return code;
}

} // namespace

int app::runApplication(const Options& options) {
    const bool isTour = !options.tour.empty();
    std::string problem;
    const Bundle bundle =
        readBundle(options.bundle.empty() ? defaultBundleFolder("Joyvane.bundle") : options.bundle, problem);
    if (!problem.empty()) {
        complain(problem);
        return ExitBundleRefused;
    }
    if (!settleRoot(options.root)) return ExitFailure;
    host::settleSessionBus(busPatience);

    // The module is read through on another thread while the toolkit starts.
    auto check = std::async(std::launch::async, host::moduleProblem, bundle.modulePath, bundle.seal);
    host::Toolkit toolkit({.needsDisplay = !isTour, .noDisplay = noDisplay});
    if (const auto reason = check.get(); !reason.empty()) {
        complain("bundle refused: " + bundle.modulePath + " " + reason);
        return ExitBundleRefused;
    }
    const Class principalClass = loadPrincipalClass(bundle, problem);
    if (!principalClass) {
        complain(problem);
        return ExitBundleRefused;
    }

    host::installBrowser();
    Simulation simulation;
    if (options.simulate && !simulation.start(bundle, problem)) {
        complain(problem);
        return ExitFailure;
    }
    const int code = isTour ? playTour(toolkit, options, bundle, principalClass, simulation)
                            : showWindow(toolkit, options, bundle, principalClass);
    host::SessionBus::shared().close();
    return code;
}
