#include "tests/machine/system/Computer.h"

#include <algorithm>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace machine {
namespace {

std::vector<std::string> lines(const std::string& text) {
    std::vector<std::string> result;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) result.push_back(line);
    return result;
}

std::string firstLine(const std::string& text) { return text.substr(0, text.find('\n')); }

// The login manager's session of that user at the seat; empty when there is none.
std::string sessionOf(const std::string& user) {
    return firstLine(
        run({"sh", "-c", "loginctl --no-legend list-sessions | awk '$3 == \"" + user + "\" {print $1}'"}).output);
}

bool isInFront(const std::string& user) {
    return firstLine(run({"loginctl", "show-session", "--value", "--property=Active", sessionOf(user)}).output) ==
           "yes";
}

} // namespace

Computer::Computer() {
    // Anna is logged in before anything else happens.
    const auto isIn = [] { return !sessionOf("anna").empty() && annasUnit("default.target") == "active"; };
    if (!waitUntil(isIn, kInstallTimeout)) throw std::runtime_error("anna is not logged in");
}

Ended Computer::install(const std::string& package) {
    return run({"apt-get", "install", "-qq", "-o", "APT::Sandbox::User=root", "-o", "Dpkg::Use-Pty=0", package}, kRoot,
               kInstallTimeout);
}
Ended Computer::remove() {
    return run({"apt-get", "remove", "-qq", "-o", "Dpkg::Use-Pty=0", "joyvane"}, kRoot, kInstallTimeout);
}
Ended Computer::purge() {
    return run({"apt-get", "purge", "-qq", "-o", "Dpkg::Use-Pty=0", "joyvane"}, kRoot, kInstallTimeout);
}

bool Computer::isInstalled() const {
    return firstLine(run({"dpkg-query", "-W", "-f=${db:Status-Status}\n", "joyvane"}).output) == "installed";
}

std::vector<std::string> Computer::files() const {
    // What the package manager puts into /usr it also takes away; there only what is called like ours could be left.
    return lines(run({"sh", "-c",
                      "{ find /etc /opt /srv /usr/local /var -xdev \\( -path /var/log -o -path /var/cache -o -path "
                      "/var/lib/apt -o -path /var/lib/dpkg -o -path /var/tmp \\) -prune -o -print; "
                      "find /usr -xdev -name '*joyvane*' -o -name 'jvn*'; } | sort"},
                     kRoot, kInstallTimeout)
                     .output);
}

std::string Computer::systemUnit(const std::string& unit) {
    return firstLine(run({"systemctl", "is-active", unit}).output);
}

std::string Computer::annasUnit(const std::string& unit) {
    return firstLine(asAnna({"systemctl", "--user", "is-active", unit}).output);
}

std::vector<std::string> Computer::processes(const std::string& name) { return lines(run({"pidof", name}).output); }

Ended Computer::asAnna(const std::vector<std::string>& command) { return run(command, kAnna); }

Ended Computer::choose(const std::string& controller) {
    return run({"python3", JOYVANE_PAGE, controller}, kAnna, kInstallTimeout);
}

std::string Computer::settings() {
    std::ifstream file("/home/anna/.local/share/joyvane/var/mobile/Library/Preferences/com.quorrel.joyvane.plist");
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

void Computer::startGame() {
    m_heard = 0;
    m_game = std::make_unique<Program>(std::vector<std::string>{GAME_PROGRAM}, kAnna);
}

bool Computer::gameHears(const std::string& text) {
    const std::string line = text + "\n";
    std::size_t found = std::string::npos;
    const bool heard = waitUntil(
        [&] {
            found = m_game->output().find(line, m_heard);
            return found != std::string::npos;
        },
        3 * kLongTimeout);
    if (heard) m_heard = found + line.size();
    return heard;
}

bool Computer::plays() {
    // A keyboard is taken only while none of its keys is down, and nobody else tries to.
    const auto isTaken = [] { return asAnna({"jvninput"}).output.find("State: playing") != std::string::npos; };
    if (!waitUntil(isTaken, 3 * kLongTimeout)) return false;
    m_keyboard.press(KEY_W);
    const bool pressed = gameHears("dpup");
    m_keyboard.release(KEY_W);
    return pressed && gameHears("dpup rest");
}

bool Computer::keyboardIsFree() {
    return waitUntil([this] { return !m_desktop.grabbedByOthers(); });
}

void Computer::setLocked(bool locked) {
    // As her session's own locker says it.
    run({"sh", "-c",
         "busctl call org.freedesktop.login1 $(busctl call org.freedesktop.login1 /org/freedesktop/login1 "
         "org.freedesktop.login1.Manager GetSession s " +
             sessionOf("anna") + " | cut -d'\"' -f2) org.freedesktop.login1.Session SetLockedHint b " +
             (locked ? "true" : "false")});
}

void Computer::letBertIn() {
    run({"systemctl", "start", "getty@tty2.service"}, kRoot, kInstallTimeout);
    if (!waitUntil([] { return !sessionOf("bert").empty(); }, kInstallTimeout))
        throw std::runtime_error("bert is not logged in");
    run({"loginctl", "activate", sessionOf("bert")});
    if (!waitUntil([] { return isInFront("bert"); })) throw std::runtime_error("bert is not in front");
}

void Computer::letAnnaBack() {
    run({"loginctl", "activate", sessionOf("anna")});
    if (!waitUntil([] { return isInFront("anna"); })) throw std::runtime_error("anna is not in front");
    // His terminal would log him in again.
    run({"systemctl", "stop", "getty@tty2.service"}, kRoot, kInstallTimeout);
    run({"loginctl", "terminate-user", "bert"}, kRoot, kInstallTimeout);
}

} // namespace machine
