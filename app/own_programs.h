#pragma once

#include <string>

namespace app {

// A program of Joyvane's own: beside this one, else in ../lib/joyvane of its folder. Empty when there is none.
std::string ownProgram(const std::string& name);

// The real path of a document that came with Joyvane; empty when there is none.
std::string ownDocument(const std::string& name);

// Starts this program once more, for a trial with simulated controllers in a root of its own; it outlives this one. One
// at a time: nothing while one runs. Main thread.
void openTrial(const std::string& bundleFolder);

} // namespace app
