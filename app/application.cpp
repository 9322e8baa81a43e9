#include "app/application.h"

#include "app/Bundle.h"
#include "app/NoticeBoard.h"
#include "app/RunningInstance.h"
#include "app/SettingsPage.h"
#include "app/Simulation.h"
#include "app/own_programs.h"
#include "app/reasons.h"
#include "app/remembered_look.h"
#include "app/root_folder.h"
#include "app/tour/tour.h"
#include "app/window_size.h"
#include "desktop/appearance/DesktopAppearance.h"
#include "desktop/mail/MailDrafts.h"
#include "desktop/window/SceneWindow.h"
#include "desktop/window/Toolkit.h"
#include "kit/dispatch/main_queue.h"
#include "kit/foundation/translation.h"
#include "platform/log.h"
#include "system/bus/SessionBus.h"
#include "system/bus/session_bus_address.h"
#include "system/files/root.h"
#include "system/preferences/preferences_store.h"
#include "system/process/installed_tools.h"

#include <cstdio>
#include <filesystem>
#include <future>
#include <memory>
#include <optional>
#include <unistd.h>
#include <utility>

namespace {

void complain(const std::string& sentence) { std::fprintf(stderr, "joyvane-settings: %s\n", sentence.c_str()); }

void noDisplay(const std::string& reason) {
    complain("no display: " + reason + "; with --tour DIR the page is shown in pictures instead");
    // The toolkit is half-made: nothing of it may be taken down.
    _exit(app::ExitNoDisplay);
}

// A simulated daemon that has died is said on the page, where it can be started again.
void sayWhenDaemonEnds(app::Simulation& simulation, app::NoticeBoard& notices) {
    simulation.setDaemonEndListener([simulation = &simulation, notices = &notices](const std::string& how) {
        const auto startAgain = [simulation, notices] {
            std::string problem;
            simulation->startDaemon(problem);
            if (problem.empty()) return notices->withdraw(app::NoticeKind::DaemonEnded);
            NSLog("%s", problem.c_str());
            notices->post(app::NoticeKind::DaemonEnded,
                          {.text = seat::translated("The simulated daemon could not be started again.")});
        };
        notices->post(
            app::NoticeKind::DaemonEnded,
            {.text = seat::filled(seat::translated("The simulated daemon %1. Until it runs again nothing can be "
                                                   "connected."),
                                  {app::reasonInUsersWords(how)}),
             .actionTitle = seat::translated("Start It Again"),
             .action = startAgain});
    });
}

int showWindow(seat::Toolkit& toolkit, const app::Options& options, const app::Bundle& bundle, Class principalClass,
               app::Simulation& simulation, app::RunningInstance& instance) {
    // Asked for first: the window system makes the window while we make the page.
    std::optional<CGSize> remembered;
    if (!options.isSizeGiven) remembered = app::rememberedWindowSize(seat::SceneWindow::screenForNew());
    auto window = std::make_unique<seat::SceneWindow>(
        seat::SceneWindowOptions{.size = remembered.value_or(options.size), .scale = options.scale});
    const CGSize sizeAtStart = window->size();
    // The page is made with it; what the desktop says later is shown when it is known.
    std::function<void(seat::AppearanceChange)> showLook;
    const seat::DesktopAppearance appearance(app::rememberedLook(), [&showLook](seat::AppearanceChange change) {
        if (showLook) showLook(change);
    });
    app::SettingsPage page(bundle, principalClass, window->size(), window->scale());
    if (!page.isShown()) {
        complain("bundle refused: " + bundle.principalClass + " of " + bundle.folder + " makes no page");
        return app::ExitBundleRefused;
    }
    showLook = [&page](seat::AppearanceChange change) {
        if (change == seat::AppearanceChange::Text) return page.scene().layOutAnew();
        page.scene().repaint();
    };
    if (options.simulate) sayWhenDaemonEnds(simulation, page.notices());
    if (!options.simulate && options.root.empty()) page.setHasInstalledDaemon();
    toolkit.awaitFonts();
    window->setScene(page.scene());
    window->setTitleSource([&page] { return page.title(); });
    page.offerHelp(
        {.inputSocket = options.inputSocket,
         .guide = app::ownDocument("user-guide.html"),
         .isSimulated = options.simulate},
        options.simulate ? std::function<void()>() : [&bundle] { app::openTrial(bundle.folder); });
    if (!options.simulate && options.root.empty()) page.introduce();
    window->setCloseHandler([&toolkit] { toolkit.quit(app::ExitSuccess); });
    window->setShortcutHandler([&toolkit, &page](seat::WindowShortcut shortcut) {
        if (shortcut == seat::WindowShortcut::Help) return page.showHelp();
        toolkit.quit(app::ExitSuccess);
    });
    instance.setRaiseHandler([&window](const std::string& token) { window->bringToFront(token); });
    toolkit.onTermination([&toolkit] { toolkit.quit(app::ExitSuccess); });
    const int code = toolkit.run();
    instance.setRaiseHandler({});
    if (const auto screen = window->screenOfOwnSize(); !screen.empty() && window->size() != sizeAtStart)
        app::rememberWindowSize(screen, window->size());
    app::rememberLook(appearance.settled());
    showLook = nullptr;
    simulation.setDaemonEndListener({});
    page.close();
    seat::drainMainQueue();
    window.reset(); // before the scene
    return code;
}

void findInstalledTools(const app::Bundle& bundle) {
    const auto tools = bundle.manifest->objectForKey("JVNTools").object<NSDictionary>();
    if (!tools) return;
    tools->enumerate([](const std::string& logicalPath, const id& name) {
        const auto program = name.string() ? app::ownProgram(*name.string()) : std::string();
        if (!program.empty()) seat::setInstalledTool(logicalPath, program);
        return true;
    });
}

// A tour begins with nothing stored, as often as it is played, and meets nobody else's daemon.
app::RootUse rootUse(const app::Options& options) {
    if (!options.simulate) return app::RootUse::Settings;
    return options.tour.empty() ? app::RootUse::Trial : app::RootUse::Tour;
}

// The root that was made for one tour goes with it.
class RootOfTour {
public:
    explicit RootOfTour(std::string folder) : m_folder(std::move(folder)) {}
    ~RootOfTour() {
        std::error_code error;
        std::filesystem::remove_all(m_folder, error);
        if (error) NSLog("removing the tour's root %s: %s", m_folder.c_str(), error.message().c_str());
    }
    RootOfTour(const RootOfTour&) = delete;
    RootOfTour& operator=(const RootOfTour&) = delete;

private:
    std::string m_folder;
};

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
    const RootUse use = rootUse(options);
    if (problem = settleRoot(options.root, use); !problem.empty()) {
        complain(problem);
        return ExitFailure;
    }
    std::optional<RootOfTour> rootOfTour;
    if (use == RootUse::Tour && options.root.empty()) rootOfTour.emplace(seat::root());
    // A user who starts it again wants to see the window that is there.
    std::unique_ptr<RunningInstance> instance;
    if (!isTour) instance = RunningInstance::start(seat::root(), bundle.folder);
    if (!isTour && !instance) return ExitSuccess;
    // From here on there are threads, and the environment stays as it is.
    seat::Toolkit::settleEnvironment();
    if (options.simulate) Simulation::settleEnvironment();
    const auto busRelay = seat::settleSessionBus();

    // The module is read through on another thread while the toolkit starts.
    auto check = std::async(std::launch::async, seat::checkModule, bundle.modulePath, bundle.seal);
    seat::Toolkit toolkit({.name = "joyvane-settings",
                           .desktopEntry = "com.quorrel.joyvane",
                           .needsDisplay = !isTour,
                           .busRelay = busRelay.get(),
                           .noDisplay = noDisplay});
    const Class principalClass = loadPrincipalClass(bundle, check.get(), problem);
    if (!principalClass) {
        complain(problem);
        rootOfTour.reset();
        // An initialiser that has thrown leaves the loader locked: whatever else would end in order could wait for it.
        _exit(ExitBundleRefused);
    }

    seat::MailDrafts::shared().removeForgotten();
    Simulation simulation;
    if (options.simulate && !simulation.start(bundle, problem)) {
        complain(problem);
        return ExitFailure;
    }
    if (!options.simulate) findInstalledTools(bundle);
    const int code = isTour ? playTour(toolkit, options, bundle, principalClass, simulation)
                            : showWindow(toolkit, options, bundle, principalClass, simulation, *instance);
    seat::MailDrafts::shared().removeRead();
    // What waits for another program's lock has a last chance, and is announced.
    seat::awaitPendingPreferences();
    seat::drainMainQueue();
    seat::SessionBus::shared().close();
    return code;
}
