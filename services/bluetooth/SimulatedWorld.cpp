#include "services/bluetooth/SimulatedWorld.h"

#include "services/bluetooth/clients.h"
#include "services/common/log.h"
#include "system/files/make_folders.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sys/epoll.h>
#include <sys/file.h>
#include <sys/inotify.h>
#include <unistd.h>
#include <utility>

namespace bluetooth {
namespace {

// What a house has that has nothing yet: one controller for each of the page's types that pair over Bluetooth.
constexpr const char* freshWorld = R"(controller 00:AA:01:01:00:01 type=1 pairing : Wireless Controller
controller 00:AA:01:02:00:02 type=2 pairing : Pad with a SYNC button
controller 00:AA:01:03:00:03 type=3 pairing : X + HOME pad
controller 00:AA:01:04:00:04 type=4 pairing : Second X + HOME pad
controller 00:AA:01:05:00:05 type=5 pairing : Third X + HOME pad
bluetooth on
)";

// The file's lock, held while it lives, beside the file: the file itself is replaced.
class WorldLock {
public:
    explicit WorldLock(const std::string& world)
        : m_descriptor(::open((world + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600)) {
        while (m_descriptor >= 0 && ::flock(m_descriptor, LOCK_EX) != 0 && errno == EINTR) {
        }
    }
    ~WorldLock() {
        if (m_descriptor >= 0) ::close(m_descriptor);
    }
    WorldLock(const WorldLock&) = delete;
    WorldLock& operator=(const WorldLock&) = delete;

private:
    int m_descriptor;
};

} // namespace

const char* const simulatedWorldHelp =
    R"(Simulated controllers are described in var/joyvane/simulated-controllers below the
root; programs that run with --simulate watch that file, and keep it up to date:
  bluetooth on|off|blocked|absent
  controller ADDRESS [WORDS] : NAME
Words: type=N (it stands for that controller type of the page), pairing (answers a
search), off (out of reach), refuses (to pair and to connect), pin (asks for a PIN),
forgot (has lost its pairing), paired, trusted, connected.
)";

SimulatedWorld::SimulatedWorld(services::EventLoop& loop, std::string path, std::function<void()> changed)
    : m_path(std::move(path)), m_changed(std::move(changed)), m_notifier(::inotify_init1(IN_CLOEXEC | IN_NONBLOCK)) {
    const std::filesystem::path file(m_path);
    seat::makeFolders(file.parent_path());
    // The folder, since the file is replaced.
    if (m_notifier >= 0)
        ::inotify_add_watch(m_notifier, file.parent_path().c_str(), IN_MOVED_TO | IN_CLOSE_WRITE | IN_DELETE);
    {
        const WorldLock lock(m_path);
        if (!std::filesystem::exists(file)) write(freshWorld);
    }
    read();
    m_watch = loop.watch(m_notifier, EPOLLIN, [this](std::uint32_t) {
        char events[4096];
        while (::read(m_notifier, events, sizeof events) > 0) {
        }
        read();
        if (m_changed) m_changed();
    });
}

SimulatedWorld::~SimulatedWorld() {
    m_watch.reset();
    if (m_notifier >= 0) ::close(m_notifier);
}

void SimulatedWorld::read() {
    std::ifstream file(m_path);
    std::string text{std::istreambuf_iterator<char>(file), {}};
    if (text == m_text) return;
    std::vector<std::string> problems;
    m_state = SimulatedState::fromText(text, problems);
    m_text = std::move(text);
    for (const auto& problem : problems) services::log("simulated controllers: %s", problem.c_str());
}

bool SimulatedWorld::change(const std::function<void(SimulatedState&)>& edit) {
    const WorldLock lock(m_path);
    read();
    SimulatedState state = m_state;
    edit(state);
    const std::string text = state.text();
    if (text == m_state.text()) return true;
    if (!write(text)) return false;
    read(); // by whoever asks next it has happened; what is told comes when the file's change is heard
    return true;
}

bool SimulatedWorld::write(const std::string& text) const {
    const std::string temporary = m_path + ".new";
    std::ofstream file(temporary, std::ios::trunc);
    file << text;
    file.close();
    if (file && ::rename(temporary.c_str(), m_path.c_str()) == 0) return true;
    services::log("simulated controllers: writing %s: %s", m_path.c_str(), std::strerror(errno));
    return false;
}

} // namespace bluetooth
