#pragma once

// What --simulate does: the programs that a bundle works with, started for this root and with simulated hardware. Which
// they are, and where the bundle expects them, is in its manifest:
//   JVNDaemon  the name of a program; it gets --simulate --trace --root ROOT and says "ready", then a line for all that
//              happens
//   JVNTools   a dictionary: logical path -> the name of the program to be found there; it finds JOYVANE_SIMULATE=1 in
//              its environment
// The programs are looked for as own_programs.h says.

#include <functional>
#include <memory>
#include <string>

namespace app {

struct Bundle;

class Simulation {
public:
    // Takes away what a process of this root that was killed has put in place; what else is there stays as it is.
    Simulation();
    // Stops everything and takes away what was put in place.
    ~Simulation();
    Simulation(const Simulation&) = delete;
    Simulation& operator=(const Simulation&) = delete;

    // Has what this process starts simulate, too. Before there are threads, where there will be some; start() does it
    // else.
    static void settleEnvironment();

    // False, and the sentence to print in `problem`, on failure. A bundle without such programs needs none. A tool, or
    // a link to one, that is in place already is the user's, and stays. A daemon that ends by itself is reaped at once,
    // logged and told the listener.
    bool start(const Bundle& bundle, std::string& problem);

    // Hears each line that the daemon says, behind its name. Main thread; may be empty.
    void setListener(std::function<void(const std::string& line)> listener);
    // Hears that the daemon has ended by itself, and how ("ended with 1"). Main thread; may be empty.
    void setDaemonEndListener(std::function<void(const std::string& how)> ended);
    void stopDaemon();
    void startDaemon(std::string& problem);
    // Takes the tools away, and puts them back.
    void removeTools();
    void placeTools(std::string& problem);

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace app
