// Anna at the page, for a test that plays the world around her: the page and the seat that ship, without a window, with
// a bus, a root and a daemon of her own.
//
//     machine_page_user INPUT-SOCKET
//
// Says "ready", and then does what it reads in lines, each answered by "done" and the line when the page has it: pair,
// pick, restart, ambient, keyboard. What does not come about ends it with 1. At its end it says what the daemon has
// traced.

#include "colourpicker/ZKColorPickerView.h"
#include "ledcolour/JVNColorPickerController.h"
#include "settings/JoyvaneListController.h"
#include "tests/support/OffscreenToolkit.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/SettingsHost.h"
#include "tests/support/TestRoot.h"

#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <iostream>
#include <poll.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr double actionTime = 60; // seconds; nothing that works takes so long, an emulated computer on a busy one does
constexpr double idleTime = 600;

class Anna {
public:
    explicit Anna(const std::string& inputSocket) {
        const std::filesystem::path tools = m_app.root() + "/usr/bin";
        std::filesystem::create_directories(tools);
        std::filesystem::create_symlink(JVNDISCOVERY_PROGRAM, tools / "jvndiscovery");
        startDaemon({JVND_PROGRAM, "--root", m_app.root(), "--trace", "--input-socket", inputSocket});
        m_app.waitUntil([this] { return starts() == 1; }, actionTime);
        m_page = JoyvaneListController::alloc()->init();
        m_app.open(m_page);
    }
    ~Anna() {
        m_app.close();
        ::kill(m_daemon, SIGTERM);
        ::waitpid(m_daemon, nullptr, 0);
        std::cout << trace() << std::flush;
    }
    Anna(const Anna&) = delete;
    Anna& operator=(const Anna&) = delete;

    // The page goes on while she waits. False at the end of what she is told.
    bool listen(std::string& what) {
        const auto isSaid = [] {
            ::pollfd input{STDIN_FILENO, POLLIN, 0};
            return ::poll(&input, 1, 0) > 0;
        };
        return m_app.waitUntil(isSaid, idleTime) && std::getline(std::cin, what);
    }
    bool does(const std::string& what) {
        if (what == "pair") return pair();
        if (what == "pick") return pick();
        if (what == "restart") return restart();
        if (what == "ambient") return m_app.tapSwitch("Ambient LED Color") && isStored("JVNAmbientColorKey", 1);
        if (what == "keyboard") return choose("Keyboard", 6);
        return false;
    }
    std::string shown() {
        return testing_support::rowsOf(*m_page) + "\n" + m_app.alert().value_or("no alert") + "\n" +
               (m_page->hud()->isShown() ? m_page->hud()->text() : "no overlay") + "\n";
    }

private:
    void startDaemon(std::vector<std::string> words) {
        std::vector<char*> arguments;
        for (auto& word : words) arguments.push_back(word.data());
        arguments.push_back(nullptr);
        ::posix_spawn_file_actions_t output;
        ::posix_spawn_file_actions_init(&output);
        ::posix_spawn_file_actions_addopen(&output, STDOUT_FILENO, m_traceFile.c_str(), O_WRONLY | O_CREAT, 0600);
        ::posix_spawn(&m_daemon, arguments[0], &output, nullptr, arguments.data(), environ);
        ::posix_spawn_file_actions_destroy(&output);
    }
    std::string trace() const { return testing_support::TestRoot::read(m_traceFile).value_or(""); }
    // How often the daemon has begun.
    int starts() const {
        const std::string all = trace(), line = "ready\n";
        int count = 0;
        for (auto at = all.find(line); at != std::string::npos; at = all.find(line, at + line.size())) ++count;
        return count;
    }
    bool wait(const std::function<bool()>& done) { return m_app.waitUntil(done, actionTime); }
    bool isStored(const char* key, std::int64_t value) {
        return wait([&] { return m_app.preference(key).integerValue() == value; });
    }
    bool choose(const char* controller, std::int64_t type) {
        return m_app.tap("Controller") && m_app.tap(controller) && isStored("controller_type", type) &&
               wait([this] { return m_app.navigation()->topViewController() == m_page; });
    }
    bool pair() {
        const auto isTold = [this] { return m_app.alert().value_or("").starts_with("Joyvane\nSuccess!"); };
        return choose("DualShock 4", 1) && m_app.tap("Pair Controller") && wait(isTold) && m_app.dismissAlert();
    }
    bool pick() {
        std::shared_ptr<JVNColorPickerController> picker;
        const auto isThere = [&] {
            picker = std::dynamic_pointer_cast<JVNColorPickerController>(m_app.navigation()->topViewController());
            return picker && picker->colorPicker()->colorMapView().view()->alpha() == 1;
        };
        if (!m_app.tap("Choose LED Color") || !wait(isThere)) return false;
        m_app.settle();
        m_app.touches().drag(*picker->colorPicker()->colorMapView().view(), {100, 100}, {8, 8});
        const auto isRed = [this] { return m_app.preference("JVNLEDColorKey") == id("fd0000"); };
        if (!wait(isRed)) return false;
        m_app.goBack();
        return true;
    }
    // The socket never goes away, and the page says nothing.
    bool restart() {
        const auto before = inode();
        return m_app.tap("Restart Daemons") && wait([this] { return starts() == 2; }) && inode() == before &&
               !m_app.alert();
    }
    ::ino_t inode() const {
        struct ::stat status {};
        return ::stat(m_socket.c_str(), &status) == 0 ? status.st_ino : 0;
    }

    testing_support::PrivateBus m_bus;
    testing_support::SettingsHost m_app;
    std::string m_socket = m_app.root() + "/Library/Caches/jvncontrol.sock";
    std::shared_ptr<JoyvaneListController> m_page;
    std::string m_traceFile = m_app.root() + "/trace";
    ::pid_t m_daemon = -1;
};

} // namespace

int main(int count, char** arguments) {
    if (count != 2) return 2;
    const testing_support::OffscreenToolkit toolkit(count, arguments);
    Anna anna(arguments[1]);
    std::cout << "ready" << std::endl;
    for (std::string what; anna.listen(what);) {
        if (!anna.does(what)) {
            std::cout << "failed " << what << "\n" << anna.shown();
            return 1;
        }
        std::cout << "done " << what << std::endl;
    }
    return 0;
}
