#pragma once

// A desktop of the tour's own: a browser and, when it is to have one, a program for messages, so that a tour starts
// nothing of the user's. The browser takes its address and ends; the other keeps the message.

#include <map>
#include <optional>
#include <string>

namespace app {

// While it lives, the folders in which desktops keep their programs are its own. Main thread.
class StandInDesktop {
public:
    // In a folder of its own, empty so far, which goes in the end.
    explicit StandInDesktop(std::string folder);
    ~StandInDesktop();
    StandInDesktop(const StandInDesktop&) = delete;
    StandInDesktop& operator=(const StandInDesktop&) = delete;

    bool isThere() const { return m_isThere; }
    // The program for messages keeps what it is given in that file. False when it could not be installed.
    bool installMail(const std::string& messageFile);
    bool removeMail();

private:
    bool install(const std::string& name, const std::string& mediaType, const std::string& action) const;
    void setVariable(const std::string& name, const std::string& value);

    std::string m_folder;
    bool m_isThere = false;
    std::map<std::string, std::optional<std::string>> m_former;
};

} // namespace app
