#pragma once

// The graphical toolkit and the main run loop, without showing what toolkit it is.

#include <functional>
#include <memory>
#include <string>

namespace seat {

class BusRelay;

struct ToolkitOptions {
    std::string name;         // what the window system calls the program
    std::string desktopEntry; // the entry's file name without ".desktop"; the application id
    bool needsDisplay = true; // false: nothing will be shown, everything else works
    // Between it and the buses, as settleSessionBus() gave it; outlives it. nullptr: there is no bus.
    BusRelay* busRelay = nullptr;
    // Called when there is no display to be had, with the reason; must end the process.
    void (*noDisplay)(const std::string& reason) = nullptr;
};

// One in a process, made and destroyed on its main thread, after settleSessionBus().
class Toolkit {
public:
    // What its libraries read from the environment. A program that has threads before its toolkit calls this before
    // these: a variable that is set while another thread reads one can end the process. Others need not.
    static void settleEnvironment();

    explicit Toolkit(const ToolkitOptions& options);
    ~Toolkit();
    Toolkit(const Toolkit&) = delete;
    Toolkit& operator=(const Toolkit&) = delete;

    // The font configuration is read, and the fonts are listed, on another thread while toolkit and page are made;
    // returns when that is done. Text can be had before, at the price of reading the configuration twice.
    void awaitFonts();

    // The main run loop, until quit(); gives back its code.
    int run();
    // Runs the loop until `done` holds, and says whether it did; gives up after `seconds` of real time. Asks before the
    // first wait and after each thing that happened.
    bool runUntil(const std::function<bool()>& done, double seconds);
    // Main thread only. The running callback finishes first.
    void quit(int code);
    // `terminated` runs on the main run loop when the process gets SIGTERM, SIGINT or SIGHUP; later ones are ignored.
    // A SIGHUP or SIGINT that the process was started to ignore stays ignored.
    void onTermination(std::function<void()> terminated);

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace seat
