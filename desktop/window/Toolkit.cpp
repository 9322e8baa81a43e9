#include "desktop/window/Toolkit.h"

#include "desktop/window/EventLoop.h"
#include "desktop/window/StallWatch.h"
#include "desktop/window/accessibility_bus.h"
#include "desktop/window/key_repeat.h"
#include "platform/log.h"
#include "system/files/environment.h"
#include "system/process/child_environment.h"

#include <QAbstractEventDispatcher>
#include <QFontDatabase>
#include <QGuiApplication>

#include <csignal>
#include <cstdlib>
#include <dlfcn.h>
#include <fcntl.h>
#include <future>
#include <unistd.h>
#include <utility>
#include <vector>

namespace {

void (*noDisplayHandler)(const std::string& reason) = nullptr;
bool isStarting = false;

// Filled by messages of the window system's plugins while the toolkit starts: why there is no display.
std::string& startProblem() {
    static auto* const problem = new std::string;
    return *problem;
}

// What else was said meanwhile. It is worth a line only when the toolkit has started: each plugin that finds no window
// system of its kind says so in its own way, and the reason is told in one sentence.
std::vector<std::string>& waitingMessages() {
    static auto* const messages = new std::vector<std::string>;
    return *messages;
}

// What is no failure of anybody: a reader that asks for a node which has just gone, and a folder that we do not use.
bool isOrdinary(const QString& message) {
    return message.startsWith(QLatin1String("WARNING Qt AtSpiAdaptor")) ||
           message.startsWith(QLatin1String("QStandardPaths: XDG_RUNTIME_DIR"));
}

// With the names of the displays that were tried, which the plugins' messages do not always have.
std::string reasonForNoDisplay() {
    std::string reason = startProblem().empty() ? "no window system is there" : startProblem();
    while (reason.ends_with(' ')) reason.pop_back();
    for (const char* const name : {"WAYLAND_DISPLAY", "DISPLAY"})
        if (const char* const value = std::getenv(name); value && *value && reason.find(value) == std::string::npos)
            reason += std::string(", ") + name + "=" + value;
    return reason;
}

void logMessage(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    // The toolkit's own handling ends in abort().
    if (type == QtFatalMsg && isStarting && noDisplayHandler) noDisplayHandler(reasonForNoDisplay());
    const bool isInteresting = type == QtWarningMsg || type == QtCriticalMsg || type == QtFatalMsg;
    if (!isInteresting || isOrdinary(message)) return;
    const bool isOfPlatform = context.category && std::string_view(context.category).starts_with("qt.qpa");
    if (isStarting && noDisplayHandler) {
        if (isOfPlatform && startProblem().empty())
            startProblem() = message.toStdString();
        else if (!isOfPlatform)
            waitingMessages().push_back(message.toStdString());
        return;
    }
    NSLog("toolkit: %s", message.toUtf8().constData());
}

int signalPipe[2] = {-1, -1};

void noteSignal(int number) {
    const int savedError = errno;
    seat::StallWatch::askToEnd();
    const char byte = static_cast<char>(number);
    (void)!write(signalPipe[1], &byte, 1);
    errno = savedError;
}

bool somethingNamesADisplay() {
    for (const char* const name : {"WAYLAND_DISPLAY", "WAYLAND_SOCKET", "DISPLAY", "QT_QPA_PLATFORM"})
        if (const char* const value = std::getenv(name); value && *value) return true;
    return false;
}

// The toolkit reads the font configuration when it first meets text, some hundred files; it then finds them read. The
// library for it is the toolkit's own dependency, of which nothing else is used here. Needs no application yet.
void readFontConfiguration() {
    using Initialise = int (*)();
    if (const auto initialise = reinterpret_cast<Initialise>(dlsym(RTLD_DEFAULT, "FcInit"))) initialise();
}

// The toolkit lists every font of the system before it uses one, which takes as long as a page where there are
// hundreds. Its list has a lock of its own.
void listFonts() { (void)QFontDatabase::families(); }

} // namespace

struct seat::Toolkit::State {
    int argumentCount = 1;
    std::string name;
    std::string platformOption = "-platform";
    std::string platform = "offscreen";
    char* arguments[4] = {};
    std::unique_ptr<StallWatch> watch; // nullptr: there is no display
    std::future<void> fonts;
    std::unique_ptr<QGuiApplication> application;
    std::unique_ptr<EventLoop> loop;
    SourceToken signalSource = 0;
    int exitCode = 0;
    bool hasQuit = false;
};

void seat::Toolkit::settleEnvironment() {
    const auto settle = [](const char* name, const char* value) {
        if (seat::environment(name) != value) setVariableForUsAlone(name, value);
    };
    // Nothing here takes text: input methods that are processes of their own stay away, since one that hangs would keep
    // us from starting.
    settle("QT_IM_MODULE", "compose");
    // The toolkit's own event loop does, and takes less of everything than the desktop's.
    settle("QT_NO_GLIB", "1");
}

seat::Toolkit::Toolkit(const ToolkitOptions& options) : m_state(std::make_unique<State>()) {
    auto& state = *m_state;
    state.name = options.name;
    state.arguments[0] = state.name.data();
    if (!options.needsDisplay) {
        state.arguments[1] = state.platformOption.data();
        state.arguments[2] = state.platform.data();
        state.argumentCount = 3;
    } else if (options.noDisplay && !somethingNamesADisplay()) {
        options.noDisplay("neither DISPLAY nor WAYLAND_DISPLAY names one");
    }

    settleEnvironment();
    // A send to a peer that has hung up reports an error and is no reason to die.
    std::signal(SIGPIPE, SIG_IGN);
    state.fonts = std::async(std::launch::async, readFontConfiguration);
    noDisplayHandler = options.needsDisplay ? options.noDisplay : nullptr;
    isStarting = true;
    qInstallMessageHandler(logMessage);
    QGuiApplication::setDesktopFileName(QString::fromStdString(options.desktopEntry));
    QGuiApplication::setQuitOnLastWindowClosed(false);
    if (options.needsDisplay) state.watch = std::make_unique<StallWatch>();
    {
        const StallWatch::Section starting;
        state.application = std::make_unique<QGuiApplication>(state.argumentCount, state.arguments);
        if (options.needsDisplay && options.busRelay) relayAccessibilityBusOfScreen(*options.busRelay);
    }
    state.fonts = std::async(std::launch::async, [configuration = std::move(state.fonts)] {
        configuration.wait();
        listFonts();
    });
    isStarting = false;
    if (auto* const watch = state.watch.get()) {
        // Between two waits for events.
        const auto* const dispatcher = QAbstractEventDispatcher::instance();
        QObject::connect(dispatcher, &QAbstractEventDispatcher::awake, [watch] { watch->begin(); });
        QObject::connect(dispatcher, &QAbstractEventDispatcher::aboutToBlock, [watch] { watch->end(); });
    }
    for (const auto& message : std::exchange(waitingMessages(), {})) NSLog("toolkit: %s", message.c_str());
    askForPlainKeyRepeat();
    state.loop = std::make_unique<EventLoop>();
}

seat::Toolkit::~Toolkit() {
    if (m_state->signalSource != 0) {
        removeSource(m_state->signalSource);
        for (const int number : {SIGTERM, SIGINT, SIGHUP}) std::signal(number, SIG_IGN);
        for (int& end : signalPipe) end = (close(end), -1);
    }
    const StallWatch::Section ending;
    awaitFonts(); // they are the application's
    m_state->loop.reset();
    m_state->application.reset();
    qInstallMessageHandler(nullptr);
}

void seat::Toolkit::awaitFonts() {
    if (m_state->fonts.valid()) m_state->fonts.get();
}

int seat::Toolkit::run() {
    if (!m_state->hasQuit) {
        const StallWatch::Section running;
        QGuiApplication::exec();
    }
    m_state->hasQuit = false;
    return m_state->exitCode;
}

bool seat::Toolkit::runUntil(const std::function<bool()>& done, double seconds) {
    QTimer timeout;
    timeout.setSingleShot(true);
    timeout.start(static_cast<int>(seconds * 1000));
    while (!done()) {
        if (m_state->hasQuit || !timeout.isActive()) return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        if (m_state->watch) m_state->watch->end();
    }
    return true;
}

void seat::Toolkit::quit(int code) {
    m_state->exitCode = code;
    m_state->hasQuit = true;
    QGuiApplication::exit(code);
}

// A handler and a pipe, and not a blocked signal and a descriptor for it: the block would be inherited by children.
void seat::Toolkit::onTermination(std::function<void()> terminated) {
    if (pipe2(signalPipe, O_CLOEXEC | O_NONBLOCK) != 0) return;
    m_state->signalSource = addReadableSource(signalPipe[0], [run = std::move(terminated)]() mutable {
        char bytes[16];
        while (read(signalPipe[0], bytes, sizeof bytes) > 0) {
        }
        if (const auto first = std::exchange(run, nullptr)) first();
    });
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
        struct sigaction action {};
        sigaction(number, nullptr, &action);
        if (number != SIGTERM && action.sa_handler == SIG_IGN) continue;
        action = {};
        action.sa_handler = noteSignal;
        action.sa_flags = SA_RESTART;
        sigaction(number, &action, nullptr);
    }
}
