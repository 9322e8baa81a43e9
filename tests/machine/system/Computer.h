#pragma once

#include "tests/machine/support/EventReader.h"
#include "tests/machine/support/Program.h"
#include "tests/machine/support/VirtualKeyboard.h"

#include <memory>
#include <string>
#include <vector>

namespace machine {

// Installing packages and starting sessions take an emulated computer a while.
constexpr std::chrono::seconds kInstallTimeout{400};

// The computer on which Joyvane is installed, used and taken off again: what its administrator, Anna, who sits at it,
// and Bert can do and see. One for all tests, which happen one after the other as they do for a person.
class Computer {
public:
    Computer();

    // The administrator, with packages in a local folder.
    Ended install(const std::string& package);
    Ended remove();
    Ended purge();
    bool isInstalled() const;
    // Every file but those of the package manager itself, logs, and what people have at home.
    std::vector<std::string> files() const;

    // Of a unit: "active", "inactive", or what else its service manager says.
    static std::string systemUnit(const std::string& unit);
    static std::string annasUnit(const std::string& unit);
    // Numbers of the processes with this name; none when there is none.
    static std::vector<std::string> processes(const std::string& name);
    static Ended asAnna(const std::vector<std::string>& command);

    // Anna opens the page from the menu and chooses that controller.
    Ended choose(const std::string& controller);
    static std::string settings();

    void startGame();
    void endGame() { m_game.reset(); }
    // Waits until the game has heard that, after what it was last waited for.
    bool gameHears(const std::string& text);
    std::string gameSaid() { return m_game ? m_game->output() : ""; }

    VirtualKeyboard& keyboard() { return m_keyboard; }
    // Presses W, which is the D-pad's upper arm, and lets it go; whether the game has heard both.
    bool plays();
    // Nobody has the keyboard for himself: what is typed reaches the desktop.
    bool keyboardIsFree();

    // Anna's session, as her screen locker has it; Bert's, in front or gone.
    static void setLocked(bool locked);
    static void letBertIn();
    static void letAnnaBack();

private:
    VirtualKeyboard m_keyboard{DeviceDescription::withLamps()};
    EventReader m_desktop{m_keyboard.node()};
    std::unique_ptr<Program> m_game;
    std::size_t m_heard = 0;
};

} // namespace machine
