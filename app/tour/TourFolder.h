#pragma once

#include <string>

namespace app {

// The folder that a tour writes into. What a tour has made is listed in a file of its own there, so that the next one
// takes that away, and nothing else: a folder may hold other things, of which none is replaced or removed.
class TourFolder {
public:
    static constexpr const char* listName = ".joyvane-tour";

    // Makes the folder where it is missing and takes away what an earlier tour has listed. Empty, or the sentence on
    // what went wrong.
    std::string prepare(const std::string& folder);

    const std::string& path() const { return m_path; }
    // The path of a file that the tour is about to write, listed from now on. Empty, and a sentence in `problem`, when
    // something has that name that no tour has made.
    std::string claim(const std::string& name, std::string& problem);
    // The same for a new folder, for the tour's own desktop.
    std::string makeDesktopFolder(std::string& problem);

private:
    bool list(const std::string& name) const;

    std::string m_path;
};

} // namespace app
