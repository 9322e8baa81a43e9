#pragma once

// The stand-ins that --simulate puts in place of what a bundle works with. Which programs they are, and where the
// bundle expects them, is in its manifest:
//   JVNStandInDaemon  the name of a program that is started for the root
//   JVNStandInTools   a dictionary: logical path -> the name of the program to be found there
// The programs are looked for beside this one, then in ../lib/joyvane of its folder.

#include <functional>
#include <memory>
#include <string>

namespace app {

struct Bundle;

class Simulation {
public:
    Simulation();
    // Stops everything and takes away what was put in place.
    ~Simulation();
    Simulation(const Simulation&) = delete;
    Simulation& operator=(const Simulation&) = delete;

    // False, and the sentence to print in `problem`, on failure. A bundle without stand-ins needs none.
    bool start(const Bundle& bundle, std::string& problem);

    // Hears each line that the stand-ins say. Main thread; may be empty.
    void setListener(std::function<void(const std::string& line)> listener);
    // A line to the daemon's stand-in. `problem` when it does not run.
    void say(const std::string& line, std::string& problem);
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
